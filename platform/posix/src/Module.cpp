#include <windows.h>
#include <dlfcn.h>

#include <cwchar>

#include "Intercept.h"

using namespace velm::posix;

namespace {

// Where kernel32's calls are: in this library itself.
void* KernelModule() {
    static void* const self = [] {
        Dl_info info{};
        dladdr(reinterpret_cast<void*>(&GetModuleHandleW), &info);
        return dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    }();
    return self;
}

}  // namespace

BOOL DisableThreadLibraryCalls(HMODULE module) {
    return !MustFail("DisableThreadLibraryCalls") && module != nullptr;
}

HMODULE GetModuleHandleW(LPCWSTR name) {
    if (MustFail("GetModuleHandleW")) {
        return nullptr;
    }
    if (name == nullptr || std::wcscmp(name, L"kernel32.dll") != 0) {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    return static_cast<HMODULE>(KernelModule());
}

FARPROC GetProcAddress(HMODULE module, LPCSTR name) {
    if (MustFail("GetProcAddress")) {
        return nullptr;
    }
    void* const address = dlsym(module, name);
    if (address == nullptr) {
        SetLastError(ERROR_PROC_NOT_FOUND);
    }
    return reinterpret_cast<FARPROC>(address);
}
