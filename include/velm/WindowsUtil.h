#pragma once

#include <string>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Windows for callers that hold their text as UTF-8. All operations are static and keep nothing between
/// calls.
///
/// UTF-16 text is one unit in each wchar_t, also where wchar_t is wider. The OEM code page is the system's.
/// Threads: any number at once, but for what an operation says of itself.
class VELM_UTIL_API WindowsUtil {
public:
    // Text. All of these leave `out` as it was when they fail.

    /// Converts 8-bit text to UTF-16, NULs inside it included. Bytes that form no character become the
    /// system's replacement for them.
    /// @return 0; the codes of PathHelper::GetWstringFromString
    static ErrorCode GetWstringFromUtf8String(const std::string& in, std::wstring& out);
    static ErrorCode GetWstringFromOemcpString(const std::string& in, std::wstring& out);

    /// Converts UTF-16 up to its first NUL to 8-bit text. What the OEM code page has no form for becomes the
    /// closest character that it has, or the system's default character; an unpaired surrogate becomes the
    /// replacement character.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when the system refuses the text, and for text of 2^31 - 1
    /// units
    ///         or more; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    static ErrorCode GetUtf8StringFromWstring(const std::wstring& in, std::string& out);
    static ErrorCode GetOemcpStringFromWstring(const std::wstring& in, std::string& out);

    /// Converts 8-bit text up to its first NUL to the other 8-bit encoding, by way of UTF-16.
    /// @return as the conversion that failed
    static ErrorCode GetOemcpStringFromUtf8String(const std::string& in, std::string& out);
    static ErrorCode GetUtf8StringFromOemcpString(const std::string& in, std::string& out);

    /// Converts text of the platform's text interface, which is UTF-16. The result is in the OEM code page,
    /// not in UTF-8: it is that of GetOemcpStringFromWstring.
    static ErrorCode GetUtf8StringFromTstring(const std::wstring& in, std::string& out);

    /// Copies text of the platform's text interface up to its first NUL.
    /// @return 0
    static ErrorCode GetWStringFromTstring(const std::wstring& in, std::wstring& out);

private:
    static ErrorCode GetWstringFromString(unsigned int codePage, const std::string& in, std::wstring& out);
    static ErrorCode GetStringFromWstring(const std::wstring& in, unsigned int codePage, std::string& out);

    /// Converts 8-bit text to a new buffer of UTF-16 with a NUL after it.
    /// @param out  receives the buffer, or null; the caller frees it with delete[]
    /// @param outLength  null, or receives the units converted, without the NUL that is added
    /// @param inLength  in bytes; -1 for NUL-terminated text, whose NUL then counts in `outLength` too
    /// @return whether it could be converted; no text at all cannot
    static bool ConvertToWideChar(unsigned int codePage, wchar_t** out, int* outLength, const char* in,
                                  int inLength);
};

}  // namespace velm
