#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace velm::posix {

/// Text as UTF-16, one unit in each wchar_t.
/// @param encoding  as iconv names it
std::wstring Wide(std::string_view text, const char* encoding = "UTF-8");

/// UTF-16 as UTF-8.
std::string Utf8(std::wstring_view text);

/// A Windows path as a path of this system, in UTF-8. A path that names an existing file as it stands is left
/// alone; otherwise every "\" in it counts as "/".
std::string NativePath(LPCWSTR path);

/// Copies a text as Windows does: cut to the buffer, NUL-terminated.
/// @return the units copied, without the NUL
DWORD CopyText(std::wstring_view text, LPWSTR buffer, std::size_t units);

}  // namespace velm::posix
