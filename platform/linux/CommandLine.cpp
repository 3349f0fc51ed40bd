#include "velm/platform/CommandLine.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>

namespace velm::platform {
namespace {

/// Reopens standard descriptors that the caller closed. Otherwise the first file opened would reuse their
/// number and receive the output. They are opened for the wrong direction, so that reads and writes still
/// fail.
void FillStandardDescriptors() {
    constexpr int kModes[] = {O_WRONLY, O_RDONLY, O_RDWR};
    for (int descriptor = 0; descriptor < 3; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1 && open("/dev/null", kModes[descriptor]) != descriptor) {
            std::_Exit(1);
        }
    }
}

}  // namespace

std::vector<std::string> Utf8CommandLine(int argc, char** argv) {
    FillStandardDescriptors();
    return {argv, argv + argc};
}

std::string NarrowFileName(const std::string& utf8) {
    return utf8;
}

void UseBinary(std::FILE*) {}

bool OutputIsTerminal() {
    return isatty(STDOUT_FILENO) != 0;
}

bool ErrorIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}

bool OutputTakesColors() {
    const char* const terminal = std::getenv("TERM");
    return OutputIsTerminal() && std::getenv("NO_COLOR") == nullptr && terminal != nullptr &&
           std::string(terminal) != "dumb";
}

}  // namespace velm::platform
