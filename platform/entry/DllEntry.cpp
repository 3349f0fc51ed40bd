/// @file
/// Calls a library's DllMain when the library is loaded and unloaded. Compiled into every library that has
/// one, as its last source, so that the library's static initializers have run before DllMain.
#include <windows.h>
#include <dlfcn.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace {

HINSTANCE ThisModule() {
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&ThisModule), &info);
    return static_cast<HINSTANCE>(info.dli_fbase);
}

__attribute__((constructor)) void OnLoad() {
    DllMain(ThisModule(), DLL_PROCESS_ATTACH, nullptr);
}

__attribute__((destructor)) void OnUnload() {
    DllMain(ThisModule(), DLL_PROCESS_DETACH, nullptr);
}

}  // namespace
