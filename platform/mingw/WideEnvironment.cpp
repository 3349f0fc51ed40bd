/// @file
/// _wdupenv_s, which <stdlib.h> declares as an import and the runtime lacks.
///
/// Reads the process's environment, not the runtime's copy: _wgetenv returns a pointer into that copy, which
/// another thread's _wputenv may free before it is read, whereas Windows copies the value under its own lock.
/// The runtime also applies every change of its copy to the process's environment.
#include <windows.h>

#include <cerrno>
#include <cstdlib>
#include <memory>

namespace {

errno_t __cdecl DuplicateVariable(wchar_t** value, size_t* units, const wchar_t* name) {
    if (value == nullptr || name == nullptr) {
        return EINVAL;
    }
    *value = nullptr;
    if (units != nullptr) {
        *units = 0;
    }
    // The size is 1 for a variable that is set but empty, 0 for one that is not set. The variable may grow or
    // vanish between two calls.
    DWORD size = GetEnvironmentVariableW(name, nullptr, 0);
    while (size != 0) {
        std::unique_ptr<wchar_t, decltype(&std::free)> copy(
            static_cast<wchar_t*>(std::calloc(size, sizeof(wchar_t))), &std::free);
        if (copy == nullptr) {
            return ENOMEM;
        }
        SetLastError(ERROR_SUCCESS);
        const DWORD length = GetEnvironmentVariableW(name, copy.get(), size);
        if (length == 0 && GetLastError() == ERROR_ENVVAR_NOT_FOUND) {
            return 0;
        }
        if (length < size) {
            *value = copy.release();
            if (units != nullptr) {
                *units = length + 1;
            }
            return 0;
        }
        size = length + 1;
    }
    return 0;
}

}  // namespace

// Imported functions are called through such a pointer, which normally comes from the import library.
extern "C" {
extern decltype(&_wdupenv_s) const __MINGW_IMP_SYMBOL(_wdupenv_s);
decltype(&_wdupenv_s) const __MINGW_IMP_SYMBOL(_wdupenv_s) = &DuplicateVariable;
}
