/// @file
/// How a part of Windows is loaded on demand: from the system's folder only, so that a library of its name in
/// the program's folder or the current one is never run. Where Windows lacks the part, as on systems that
/// were stripped of it, its functions fail as functions do, with 0 and a last error; the runtime alone would
/// end the process.
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
            // After null the runtime would search the other folders itself. Any module that stays loaded does
            // instead: the function is not found in it.
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
