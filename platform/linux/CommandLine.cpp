#include "velm/platform/CommandLine.h"

#include <unistd.h>

#include <cstdlib>

namespace velm::platform {

std::vector<std::string> Utf8CommandLine(int argc, char** argv) {
    return {argv, argv + argc};
}

std::string NarrowFileName(const std::string& utf8) {
    return utf8;
}

bool OutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

bool OutputTakesColors() {
    const char* const terminal = std::getenv("TERM");
    return OutputIsTerminal() && std::getenv("NO_COLOR") == nullptr && terminal != nullptr &&
           std::string(terminal) != "dumb";
}

}  // namespace velm::platform
