#pragma once

#include "velm/core/Export.h"

namespace velm {

/// Formats a message of up to 1023 characters as printf does, and discards it. Does not end the process.
/// @param format  NUL-terminated; null does nothing
/// Threads: any.
VELM_UTIL_API void AbortMessage(const char* format, ...);

}  // namespace velm
