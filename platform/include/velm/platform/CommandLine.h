#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace velm::platform {

/// Returns the arguments of the process, program name first, in UTF-8 whatever the system's code page, and
/// sets the console to UTF-8. Call once, from main.
std::vector<std::string> Utf8CommandLine(int argc, char** argv);

/// Converts a file name to the encoding that fopen expects; "" when it cannot be represented.
std::string NarrowFileName(const std::string& utf8);

/// Switches a standard stream to binary mode: no translation of line ends, no end of file at byte 1A.
void UseBinary(std::FILE* stream);

/// Whether standard output goes to a terminal.
bool OutputIsTerminal();

/// Whether standard error goes to a terminal.
bool ErrorIsTerminal();

/// Whether standard output goes to a terminal with colours and the environment variable NO_COLOR is not set.
bool OutputTakesColors();

}  // namespace velm::platform
