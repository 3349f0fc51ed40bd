#pragma once

#include "velm/core/Export.h"

namespace velm {

/// Returns the milliseconds since the origin of the system's monotonic counter, roughly when the machine
/// started; not wall-clock time. 0 when the system has no counter.
/// Threads: any.
VELM_UTIL_API unsigned long long GetLocalMachineTime();

}  // namespace velm
