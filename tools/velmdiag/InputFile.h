#pragma once

#include <cstddef>
#include <string>

namespace velmdiag {

/// Reads a whole file. Throws Failure when it cannot be read or holds more than `most` bytes.
/// @param path  in UTF-8
std::string ReadWholeFile(const std::string& path, std::size_t most);

}  // namespace velmdiag
