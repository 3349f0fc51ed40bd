#pragma once

#include <vector>

#include "velm/core/Export.h"

namespace velm {

/// A code and the texts it was registered with. The texts live as long as the core library is loaded.
struct ErrorCodeInfo {
    unsigned int code;     ///< with bit 31 for a failure
    const char* facility;  ///< such as "VELM_FACILITY_UTIL"
    const char* name;      ///< such as "VELM_ERROR_UTIL_UNKNOWN"
};

/// Records a code with its facility and its name. The texts are copied, so a library that registered codes
/// may be unloaded. A code that is known already keeps its first entry. When memory runs out the code is not
/// recorded.
/// @param facility, name  NUL-terminated; null counts as ""
/// Threads: any. Waits for no other thread but a registration or look-up in progress, and loads nothing, so
/// it may be called under the loader lock.
VELM_CORE_API void RegisterErrorCode(unsigned int code, const char* facility, const char* name);

/// Looks a code up among the registered ones and the core library's own.
/// @return the entry, valid while the core library is loaded; null when the code is unknown
/// Threads: any.
VELM_CORE_API const ErrorCodeInfo* FindErrorCode(unsigned int code);

/// All registered codes, in order of registration. The core library's own codes are not among them.
/// Threads: any. Throws std::bad_alloc when memory runs out.
VELM_CORE_API std::vector<ErrorCodeInfo> GetRegisteredErrorCodes();

}  // namespace velm
