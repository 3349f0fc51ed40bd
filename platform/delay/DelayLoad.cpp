/// @file
/// Hooks of the delay-load helper. Delay-loaded DLLs come from the system folder only: a DLL of the same name
/// in the program's folder or the current one is never loaded. If the DLL or a function in it is missing,
/// calls return 0 and set the last error. Without the hooks, the helper would end the process.
#include <windows.h>
#include <delayimp.h>

namespace {

INT_PTR WINAPI FailAsMissing() {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return 0;
}

FARPROC WINAPI OnDelayLoad(unsigned int event, DelayLoadInfo* info) {
    switch (event) {
        case dliNotePreLoadLibrary: {
            const HMODULE found = LoadLibraryExA(info->szDll, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
            // If this returned null, the helper would search the other folders. Any module that stays loaded
            // will do, because it does not have the function.
            return reinterpret_cast<FARPROC>(found != nullptr ? found : GetModuleHandleW(L"kernel32"));
        }
        case dliFailGetProc:
            return reinterpret_cast<FARPROC>(&FailAsMissing);
        default:
            return nullptr;
    }
}

}  // namespace

// Visual C++'s header declares the hooks const, MinGW's does not.
extern "C" {
decltype(__pfnDliNotifyHook2) __pfnDliNotifyHook2 = &OnDelayLoad;
decltype(__pfnDliFailureHook2) __pfnDliFailureHook2 = &OnDelayLoad;
}
