#pragma once

#include "velm/core/Export.h"

namespace velm {

/// Milliseconds since the origin of the system's monotonic counter, which is about when the machine started;
/// not wall-clock time.
/// @return 0 when the system has no counter
/// Threads: any.
VELM_UTIL_API unsigned long long GetLocalMachineTime();

}  // namespace velm
