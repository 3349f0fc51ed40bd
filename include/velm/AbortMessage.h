#pragma once

#include "velm/core/Export.h"

namespace velm {

/// Formats a message by the rules of printf, as far as 1023 characters go, and reports it nowhere. It does
/// not end the process.
/// @param format  NUL-terminated; null counts as no message
/// Threads: any.
VELM_UTIL_API void AbortMessage(const char* format, ...);

}  // namespace velm
