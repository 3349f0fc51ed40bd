/// @file
/// Shared by the source files of the command "config".
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmdiag {

/// The exit status of "config" if the setting does not exist.
constexpr int kNotFound = 1;

/// Converts a name to the OEM code page, as the readers of the environment and of INI files expect. Throws
/// Failure if the code page lacks one of its characters.
std::string ToOem(const std::string& utf8);

void AddConfigIni(CLI::App& config, int& exitStatus);
void AddConfigJson(CLI::App& config, int& exitStatus);

}  // namespace velmdiag
