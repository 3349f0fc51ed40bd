#pragma once

#include <cstddef>
#include <string>

namespace velmdiag {

/// Reads a whole file. Throws Failure if it cannot be read or is larger than `maxSize` bytes.
/// @param path  in UTF-8
std::string ReadWholeFile(const std::string& path, std::size_t maxSize);

}  // namespace velmdiag
