#include <windows.h>
#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cwchar>
#include <mutex>
#include <optional>
#include <string>

#include "Intercept.h"
#include "Path.h"

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

std::mutex g_mutex;
std::optional<std::wstring> g_executablePath;

std::wstring ExecutablePath() {
    const std::lock_guard lock(g_mutex);
    if (g_executablePath) {
        return *g_executablePath;
    }
    char path[PATH_MAX];
    const ssize_t size = readlink("/proc/self/exe", path, sizeof path);
    return size > 0 ? WidePath({path, static_cast<std::size_t>(size)}) : std::wstring();
}

std::wstring ModulePath(HMODULE module) {
    link_map* map = nullptr;
    if (dlinfo(module, RTLD_DI_LINKMAP, &map) != 0) {
        return {};
    }
    return WidePath(map->l_name);
}

}  // namespace

namespace velm::posix {

void SetExecutablePath(const std::wstring& path) {
    const std::lock_guard lock(g_mutex);
    g_executablePath = path;
}

void ResetModules() {
    const std::lock_guard lock(g_mutex);
    g_executablePath.reset();
}

}  // namespace velm::posix

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
    if (std::wcscmp(name, L"kernel32.dll") == 0) {
        return static_cast<HMODULE>(KernelModule());
    }
    return WithinSystem(HMODULE{}, [&]() -> HMODULE {
        void* const module = dlopen(NativePath(name).c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (module == nullptr) {
            SetLastError(ERROR_MOD_NOT_FOUND);
            return nullptr;
        }
        dlclose(module);  // as on Windows, the handle given is not counted
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
    // The library's own start makes calls too, and is not the system.
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
        const std::size_t units = std::min<std::size_t>(full.size(), size - 1);
        full.copy(path, units);
        path[units] = 0;
        if (units == full.size()) {
            return static_cast<DWORD>(units);
        }
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return size;  // the path was cut, and its NUL counts
    });
}
