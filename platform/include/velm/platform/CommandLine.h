#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace velm::platform {

/// The arguments of the process, its own name first, in UTF-8 whatever the system's code page, and a console
/// that is set to show UTF-8. Called once, from main.
std::vector<std::string> Utf8CommandLine(int argc, char** argv);

/// A file's name as the C library's narrow calls take it; empty when they cannot.
std::string NarrowFileName(const std::string& utf8);

/// Has a standard stream pass bytes as they are, with line ends and the byte 1A untouched.
void UseBinary(std::FILE* stream);

/// Whether standard output goes to a terminal.
bool OutputIsTerminal();

/// Whether standard output goes to a terminal that shows colours, and the user has not turned them off with
/// the environment variable NO_COLOR.
bool OutputTakesColors();

}  // namespace velm::platform
