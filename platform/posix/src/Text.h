#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace velm::posix {

/// Converts text to UTF-16, one unit per wchar_t.
/// @param encoding  iconv's name of the text's encoding
std::wstring Wide(std::string_view text, const char* encoding = "UTF-8");

/// Converts UTF-16 to UTF-8.
std::string Utf8(std::wstring_view text);

/// Converts a Windows path to a native path in UTF-8. A path of an existing file is unchanged; in others,
/// every "\" becomes "/".
std::string NativePath(LPCWSTR path);

/// Copies a string as Windows does: truncated to the buffer, NUL-terminated.
/// @return units copied, without the NUL
DWORD CopyText(std::wstring_view text, LPWSTR buffer, std::size_t units);

}  // namespace velm::posix
