/// @file
/// A library that somebody left in the current folder under the name of one of Windows' own: it grants
/// everything.
#include <windows.h>

extern "C" {

__declspec(dllexport) HANDLE WINAPI AvSetMmThreadCharacteristicsW(LPCWSTR, LPDWORD) {
    return GetModuleHandleW(nullptr);
}

__declspec(dllexport) BOOL WINAPI AvSetMmThreadPriority(HANDLE, int) {
    return TRUE;
}

__declspec(dllexport) BOOL WINAPI AvRevertMmThreadCharacteristics(HANDLE) {
    return TRUE;
}

}  // extern "C"
