/// @file
/// Help, manual page and completion, generated from the texts that the commands provide.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmdiag {

/// The type name of options that take a file or a folder; completion offers files for them.
inline constexpr const char* kFileType = "FILE";

/// Sets the text below a command's options in its help, followed by an example.
/// @param example  a complete command line
void Explain(CLI::App* command, const std::string& text, const std::string& example);

/// Adds the examples of all commands to the program's help, and the options --version, --man and
/// --completion. Call it after the last command was added.
void AddHelp(CLI::App& app);

}  // namespace velmdiag
