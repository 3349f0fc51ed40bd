#pragma once

#include <cstddef>
#include <string>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// Path splitting, and conversion of 8-bit text to UTF-16 (one code unit per wchar_t, even where wchar_t has
/// 32 bits).
/// Threads: any.
class VELM_CORE_API PathHelper {
public:
    /// Writes the directory part of a path, without a trailing separator: "D:\app" for "D:\app\a.exe", "D:"
    /// for "D:\a.exe", "." for "a.exe". Both "\" and "/" are separators.
    /// @param out  out: the directory, NUL-terminated; owned by the caller; unchanged on failure
    /// @param outSize  size of `out` in bytes
    /// @param path  NUL-terminated, UTF-8
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null argument or an `outSize` of 0;
    ///         VELM_ERROR_CORE_DATA_LENGTH when the directory does not fit
    static ErrorCode GetFileDir(char* out, std::size_t outSize, const char* path);

    /// Converts 8-bit text to UTF-16, including embedded NULs. Bytes that are invalid in the code page become
    /// the system's replacement character.
    /// @param codePage  Windows code page number: 65001 for UTF-8, 1 for the system's OEM code page
    /// @param out  out: the text; unchanged on failure
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for an unknown code page or more than 2^31 - 1 bytes;
    ///         VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    static ErrorCode GetWstringFromString(unsigned int codePage, const std::string& in, std::wstring& out);

    /// GetWstringFromString for UTF-8.
    static ErrorCode GetWstringFromUtf8String(const std::string& in, std::wstring& out);

    /// GetWstringFromString for the system's OEM code page.
    static ErrorCode GetWstringFromOemcpString(const std::string& in, std::wstring& out);
};

}  // namespace velm
