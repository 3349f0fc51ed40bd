#include "Output.h"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

namespace velmdiag {

std::string FinishOutput() {
    errno = 0;
    std::cout.flush();
    const bool flushed = std::fflush(stdout) == 0;
    const int error = errno;
    if (flushed && std::cout.good() && std::ferror(stdout) == 0) {
        return {};
    }
    // A failure in an earlier flush is recorded in the stream, but its reason is lost.
    return error != 0 ? std::generic_category().message(error) : "a write failed";
}

}  // namespace velmdiag
