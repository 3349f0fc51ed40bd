#pragma once

#include <string>
#include <vector>

namespace velmdiag {

/// Writes pixels of three bytes, red first, row by row without gaps, as a PNG file; an existing file is
/// replaced. Throws Failure when the file cannot be written.
/// @param width, height  in pixels; their product is at most 2^29
void WritePng(const std::string& path, int width, int height, const std::vector<unsigned char>& rgb);

}  // namespace velmdiag
