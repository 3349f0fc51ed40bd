/// @file
/// What happens when a part of Windows that loads on demand is not there, as on systems that were stripped of
/// it: its functions fail as functions do, with 0 and a last error, where the runtime would end the process.
#include <windows.h>
#include <delayimp.h>

namespace {

INT_PTR WINAPI FailAsMissing() {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return 0;
}

/// Any module will do for one that cannot be loaded: the function will not be found in it.
FARPROC WINAPI OnFailure(unsigned int what, DelayLoadInfo*) {
    switch (what) {
        case dliFailLoadLib:
            return reinterpret_cast<FARPROC>(GetModuleHandleW(L"kernel32"));
        case dliFailGetProc:
            return reinterpret_cast<FARPROC>(&FailAsMissing);
        default:
            return nullptr;
    }
}

}  // namespace

extern "C" {
PfnDliHook __pfnDliFailureHook2 = &OnFailure;
}
