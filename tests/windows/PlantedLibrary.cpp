/// @file
/// A library that an attacker planted in the current folder under the name of a Windows library.
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
