#include <windows.h>
#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <climits>
#include <cwchar>
#include <string>

#include "Intercept.h"
#include "Text.h"

using namespace velm::posix;

namespace {

/// The file that implements kernel32's calls: this library itself.
std::string KernelFile() {
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&GetModuleHandleW), &info);
    return info.dli_fname;
}

std::wstring ExecutablePath() {
    std::wstring set = Locked<Settings>()->executablePath;
    if (!set.empty()) {
        return set;
    }
    char path[PATH_MAX];
    const ssize_t size = readlink("/proc/self/exe", path, sizeof path);
    return size > 0 ? Wide({path, static_cast<std::size_t>(size)}) : std::wstring();
}

std::wstring ModulePath(HMODULE module) {
    link_map* map = nullptr;
    return dlinfo(module, RTLD_DI_LINKMAP, &map) == 0 ? Wide(map->l_name) : std::wstring();
}

}  // namespace

BOOL DisableThreadLibraryCalls(HMODULE module) {
    return !MustFail("DisableThreadLibraryCalls") && module != nullptr;
}

HMODULE GetModuleHandleW(LPCWSTR name) {
    if (MustFail("GetModuleHandleW")) {
        return nullptr;
    }
    if (name == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return WithinSystem(HMODULE{}, [&]() -> HMODULE {
        const bool isKernel = std::wcscmp(name, L"kernel32.dll") == 0;
        const std::string file = isKernel ? KernelFile() : NativePath(name);
        void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (module == nullptr) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return nullptr;
        }
        dlclose(module);  // as on Windows, the returned handle holds no reference
        return static_cast<HMODULE>(module);
    });
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

HMODULE LoadLibraryW(LPCWSTR path) {
    if (MustFail("LoadLibraryW")) {
        return nullptr;
    }
    if (path == nullptr || *path == 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    // dlopen runs outside WithinSystem: calls by the loaded library's initializers count.
    const std::string native = WithinSystem(std::string(), [&] { return NativePath(path); });
    void* const module = native.empty() ? nullptr : dlopen(native.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        SetLastError(ERROR_MOD_NOT_FOUND);
    }
    return static_cast<HMODULE>(module);
}

BOOL FreeLibrary(HMODULE module) {
    return !MustFail("FreeLibrary") && module != nullptr && dlclose(module) == 0;
}

DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size) {
    if (MustFail("GetModuleFileNameW")) {
        return 0;
    }
    return WithinSystem(DWORD{0}, [&]() -> DWORD {
        const std::wstring full = module == nullptr ? ExecutablePath() : ModulePath(module);
        if (full.empty() || size == 0) {
            SetLastError(full.empty() ? ERROR_MOD_NOT_FOUND : ERROR_INSUFFICIENT_BUFFER);
            return 0;
        }
        const DWORD units = CopyText(full, path, size);
        if (units == full.size()) {
            return units;
        }
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;  // truncated: the count includes the NUL
    });
}
