#pragma once

#include <filesystem>
#include <string>

namespace velmdiag {

/// The path that UTF-8 text names, whatever the system's code page.
std::filesystem::path PathOf(const std::string& utf8);

/// Throws Failure when a file to be written is the one that is read.
void RefuseToOverwriteInput(const std::string& input, const std::string& output);

}  // namespace velmdiag
