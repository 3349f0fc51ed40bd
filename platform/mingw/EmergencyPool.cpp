/// @file
/// The C++ runtime reserves 72 KiB for exceptions thrown when out of memory: in every library that links it,
/// from load on, never freed. Compiled into each library, this frees them when the library is unloaded.

namespace __gnu_cxx {

void __freeres();

}  // namespace __gnu_cxx

namespace {

constexpr int kLast = 101;

__attribute__((destructor(kLast))) void FreeEmergencyPool() {
    __gnu_cxx::__freeres();
}

}  // namespace
