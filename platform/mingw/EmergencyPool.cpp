/// @file
/// The C++ runtime sets memory aside for exceptions that are thrown when there is none left: 72 KiB in every
/// library that it is linked into, from load on and for good. Compiled into each library, this gives them
/// back as the library is unloaded.

namespace __gnu_cxx {

void __freeres();

}  // namespace __gnu_cxx

namespace {

constexpr int kLast = 101;

__attribute__((destructor(kLast))) void FreeEmergencyPool() {
    __gnu_cxx::__freeres();
}

}  // namespace
