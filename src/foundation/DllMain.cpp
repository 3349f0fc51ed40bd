#include <windows.h>

/// The library's entry point. It never fails a load.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        // Fails for a library with thread-local storage of its own, which platform/mingw keeps out.
        DisableThreadLibraryCalls(module);
    }
    return TRUE;
}
