#include <windows.h>

namespace velm {

void ClearErrorRegistry();

}  // namespace velm

/// The library's entry point on Windows.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID processEnds) {
    if (reason == DLL_PROCESS_ATTACH) {
        DisableThreadLibraryCalls(module);
    }
    if (reason == DLL_PROCESS_DETACH && processEnds == nullptr) {
        velm::ClearErrorRegistry();
    }
    return TRUE;
}
