/// @file
/// How a library ends the process when an exception leaves a function that must not let it: at once. The
/// runtime's own way prints the exception's name, and for that links all that decodes names: 50 KB in each
/// library.
#include <cstdlib>

namespace __gnu_cxx {

void __verbose_terminate_handler() {
    std::abort();
}

}  // namespace __gnu_cxx
