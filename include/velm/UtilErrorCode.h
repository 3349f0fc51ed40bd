#pragma once

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

// The library's error codes, facility "VELM_FACILITY_UTIL". Registered when the library loads, so
// FindErrorCode (velm/core/ErrorRegistry.h) returns their names.
constexpr unsigned int VELM_ERROR_UTIL_UNKNOWN = 0x8149AC01;            ///< no more specific reason
constexpr unsigned int VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY = 0x8149AC02;  ///< an allocation failed
constexpr unsigned int VELM_ERROR_UTIL_INVALID_PARAM = 0x8149AC03;      ///< a null or unusable argument
constexpr unsigned int VELM_ERROR_UTIL_ILLEGAL_CALL = 0x8149AC04;       ///< the state does not allow the call
constexpr unsigned int VELM_ERROR_UTIL_NOT_INITIALIZED = 0x8149AC05;    ///< not initialized, or no storage
constexpr unsigned int VELM_ERROR_UTIL_ALREADY_EXIST = 0x8149AC06;  ///< registered; no operation returns it
constexpr unsigned int VELM_ERROR_UTIL_NOT_EXIST = 0x8149AC07;      ///< a look-up found nothing
constexpr unsigned int VELM_ERROR_UTIL_DATA_LENGTH = 0x8149AC08;    ///< a length below the required size
constexpr unsigned int VELM_ERROR_UTIL_D3D9_FAILED = 0x8149AC09;    ///< a Direct3D 9 call failed
constexpr unsigned int VELM_ERROR_UTIL_DATA_BROKEN = 0x8149AC0A;    ///< malformed data

}  // namespace velm
