/// @file
/// The parts of the command "config" that have files of their own.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmdiag {

/// The exit status of "config" when the setting is not there.
constexpr int kNotFound = 1;

/// Converts a name to the encoding in which the readers of the environment and of INI files take it. Throws
/// Failure when it has characters outside the OEM code page.
std::string ToOem(const std::string& utf8);

void AddConfigIni(CLI::App& config, int& exitStatus);
void AddConfigJson(CLI::App& config, int& exitStatus);

}  // namespace velmdiag
