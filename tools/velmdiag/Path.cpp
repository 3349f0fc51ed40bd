#include "Path.h"

#include <system_error>

#include "Command.h"

namespace velmdiag {

std::filesystem::path PathOf(const std::string& utf8) {
    return std::u8string(utf8.begin(), utf8.end());
}

void RefuseToOverwriteInput(const std::string& input, const std::string& output) {
    std::error_code ignored;
    if (std::filesystem::equivalent(PathOf(input), PathOf(output), ignored)) {
        throw Failure{output + ": is the input file", 2};
    }
}

}  // namespace velmdiag
