#pragma once

#include <string>

namespace velm::platform {

/// The system under the libraries, with its version.
std::string SystemName();

/// A library of the process as the system loaded it; both are empty when it is not there or does not say.
struct LibraryFile {
    std::string path;  ///< UTF-8
    std::string version;
};

/// Looks a loaded library up by the name it was built under, such as "VelmUtil".
LibraryFile FindLibrary(const std::string& name);

}  // namespace velm::platform
