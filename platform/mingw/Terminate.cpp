/// @file
/// Replaces the runtime's terminate handler, which runs when an exception leaves a noexcept function, with
/// one that only aborts. The runtime's handler prints the exception's name and so links the demangler: 50 KB
/// in each library.
#include <cstdlib>

namespace __gnu_cxx {

void __verbose_terminate_handler() {
    std::abort();
}

}  // namespace __gnu_cxx
