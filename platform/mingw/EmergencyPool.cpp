/// @file
/// Every library that links the C++ runtime gets an emergency pool of 72 KiB, for exceptions thrown when out
/// of memory, which the runtime never frees. Compiled into each library, this frees it on unload.

namespace __gnu_cxx {

void __freeres();

}  // namespace __gnu_cxx

namespace {

constexpr int kLast = 101;

__attribute__((destructor(kLast))) void FreeEmergencyPool() {
    __gnu_cxx::__freeres();
}

}  // namespace
