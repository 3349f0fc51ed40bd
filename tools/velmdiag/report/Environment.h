#pragma once

#include <optional>
#include <string>

namespace velmdiag::report {

/// Reads an environment variable through the library.
/// @param name  in ASCII
/// @return its value in UTF-8; none when it is not set
std::optional<std::string> Variable(const std::string& name);

}  // namespace velmdiag::report
