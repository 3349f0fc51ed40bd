#pragma once

#include <vector>

#include "velm/core/Export.h"

namespace velm {

/// A code with its facility and name. Both strings stay valid while the core library is loaded.
struct ErrorCodeInfo {
    unsigned int code;     ///< with bit 31 for a failure
    const char* facility;  ///< such as "VELM_FACILITY_UTIL"
    const char* name;      ///< such as "VELM_ERROR_UTIL_UNKNOWN"
};

/// Registers a code with its facility and name. The strings are copied, so the registering library may be
/// unloaded. A code that is already known keeps its first entry. If memory runs out, the code is not
/// registered.
/// @param facility, name  NUL-terminated; null counts as ""
/// Threads: any, also under the loader lock: the function takes no lock and loads no library.
VELM_CORE_API void RegisterErrorCode(unsigned int code, const char* facility, const char* name);

/// Looks up a registered code or one of the core library's own.
/// @return the entry, valid while the core library is loaded; null for an unknown code
/// Threads: any.
VELM_CORE_API const ErrorCodeInfo* FindErrorCode(unsigned int code);

/// Returns the registered codes in order of registration, without the core library's own.
/// Throws std::bad_alloc when out of memory.
/// Threads: any.
VELM_CORE_API std::vector<ErrorCodeInfo> GetRegisteredErrorCodes();

}  // namespace velm
