#pragma once

#include "velm/core/Export.h"

namespace velm {

/// Whether the system is ending the process and has ended all its threads but the calling one, as when
/// Windows unloads the libraries of a process. What the other threads held they never give back, so no
/// operation of this library waits then.
/// @return false for good on Linux, where threads run on until the process is gone
/// Threads: any.
VELM_CORE_API bool IsProcessEnding();

}  // namespace velm
