/// @file
/// What velmdiag says of itself: help, manual page and completion, all from the texts that the commands give.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmdiag {

/// The type name of an option whose value is a file or a folder; completion then offers files.
inline constexpr const char* kFileType = "FILE";

/// Gives a command the text below its options, and the example that ends it.
/// @param example  a whole command line
void Explain(CLI::App* command, const std::string& text, const std::string& example);

/// Adds the examples of all commands to the program's help, and the options --version, --man and
/// --completion. To be called after the last command was added.
void AddHelp(CLI::App& app);

}  // namespace velmdiag
