#pragma once

#include <filesystem>
#include <string>

namespace velmdiag {

/// Converts UTF-8 text to a path, whatever the system's code page.
std::filesystem::path PathOf(const std::string& utf8);

/// Throws Failure if the output file is the input file.
void RefuseToOverwriteInput(const std::string& input, const std::string& output);

}  // namespace velmdiag
