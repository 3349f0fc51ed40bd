#include "velm/platform/CommandLine.h"

#include <unistd.h>

namespace velm::platform {

std::vector<std::string> Utf8CommandLine(int argc, char** argv) {
    return {argv, argv + argc};
}

bool OutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

}  // namespace velm::platform
