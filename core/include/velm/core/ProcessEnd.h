#pragma once

#include "velm/core/Export.h"

namespace velm {

/// Whether the process is ending and Windows has already killed all threads but the calling one, as in static
/// destructors of a DLL. Locks that those threads owned are never released, so no operation of this library
/// blocks in this state.
/// @return always false on Linux, where threads run until the process is gone
/// Threads: any.
VELM_CORE_API bool IsProcessEnding();

}  // namespace velm
