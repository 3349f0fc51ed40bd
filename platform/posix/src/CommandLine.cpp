#include "velm/platform/CommandLine.h"

#include <unistd.h>

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

}  // namespace velm::platform
