#pragma once

#include <cstddef>
#include <string>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// Paths, and text from 8-bit encodings to UTF-16 (one unit in each wchar_t, also where wchar_t is wider).
/// Threads: all operations may run on any number of threads at once.
class VELM_CORE_API PathHelper {
public:
    /// Writes the directory part of a path, without a trailing separator: "D:\app" for "D:\app\a.exe", "D:"
    /// for "D:\a.exe", "." for "a.exe". Both "\" and "/" separate.
    /// @param out  receives the directory and a NUL; the caller's, `outSize` bytes long; unchanged on failure
    /// @param path  NUL-terminated, UTF-8
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null argument or an `outSize` of 0;
    ///         VELM_ERROR_CORE_DATA_LENGTH when it does not fit
    static ErrorCode GetFileDir(char* out, std::size_t outSize, const char* path);

    /// Converts 8-bit text to UTF-16, NULs inside it included. Bytes that are invalid in the code page become
    /// the system's replacement character.
    /// @param codePage  a Windows code page number; 65001 for UTF-8, 1 for the system's OEM code page
    /// @param out  receives the text; unchanged on failure
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for an unknown code page or more than 2^31 - 1 bytes;
    ///         VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    static ErrorCode GetWstringFromString(unsigned int codePage, const std::string& in, std::wstring& out);

    /// GetWstringFromString from UTF-8.
    static ErrorCode GetWstringFromUtf8String(const std::string& in, std::wstring& out);

    /// GetWstringFromString from the system's OEM code page.
    static ErrorCode GetWstringFromOemcpString(const std::string& in, std::wstring& out);
};

}  // namespace velm
