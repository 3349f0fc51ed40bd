#pragma once

#include <string>

namespace velm::platform {

/// Returns name and version of the operating system.
std::string SystemName();

/// The file of a loaded library; a member is empty when it is unknown or the library is not loaded.
struct LibraryFile {
    std::string path;  ///< UTF-8
    std::string version;
};

/// Finds a loaded library by its target name, such as "VelmUtil".
LibraryFile FindLibrary(const std::string& name);

}  // namespace velm::platform
