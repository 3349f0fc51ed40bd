#pragma once

namespace velm {

// The core library's error codes, facility "VELM_FACILITY_CORE". Known to FindErrorCode without registration.
constexpr unsigned int VELM_ERROR_CORE_UNKNOWN = 0x84E89001;
constexpr unsigned int VELM_ERROR_CORE_NOT_ENOUGH_MEMORY = 0x84E89002;
constexpr unsigned int VELM_ERROR_CORE_INVALID_PARAM = 0x84E89003;
constexpr unsigned int VELM_ERROR_CORE_ILLEGAL_CALL = 0x84E89004;
constexpr unsigned int VELM_ERROR_CORE_NOT_INITIALIZED = 0x84E89005;
constexpr unsigned int VELM_ERROR_CORE_NOT_EXIST = 0x84E89006;         ///< no such file
constexpr unsigned int VELM_ERROR_CORE_ACCESS_DENIED = 0x84E89007;     ///< an unreadable file, or a directory
constexpr unsigned int VELM_ERROR_CORE_DATA_LENGTH = 0x84E89008;       ///< the caller's buffer is too small
constexpr unsigned int VELM_ERROR_CORE_END_OF_DATA = 0x84E89009;       ///< too few bytes left for the read
constexpr unsigned int VELM_ERROR_CORE_READ_FAILED = 0x84E8900A;       ///< the system's read call failed
constexpr unsigned int VELM_ERROR_CORE_LIMIT_EXCEEDED = 0x84E8900B;    ///< past a semaphore's maximum
constexpr unsigned int VELM_ERROR_CORE_THREAD_EXCEPTION = 0x84E8900C;  ///< a thread's function threw
constexpr unsigned int VELM_ERROR_CORE_NOTHING_TO_READ =
    0x84E8900D;  ///< a read of 0 bytes where data is expected

}  // namespace velm
