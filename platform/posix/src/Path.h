#pragma once

#include <windows.h>

#include <string>

namespace velm::posix {

/// A Windows path as a path of this system, in UTF-8. A path that names an existing file as it stands is left
/// alone; otherwise every "\" in it counts as "/".
std::string NativePath(LPCWSTR path);

/// A path of this system, in UTF-8, as Windows' calls give it.
std::wstring WidePath(const std::string& path);

}  // namespace velm::posix
