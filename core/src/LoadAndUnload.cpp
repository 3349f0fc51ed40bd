#include <windows.h>

#include "velm/core/ProcessEnd.h"

namespace velm {

void ClearErrorRegistry();

namespace {

/// Does what DllMain usually does, without one of our own, so that VelmCore links with any runtime's DllMain.
class LoadAndUnload {
public:
    /// The library need not be notified of threads.
    LoadAndUnload() {
        HMODULE self = nullptr;
        if (GetModuleHandleExW(
                GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                reinterpret_cast<LPCWSTR>(&ClearErrorRegistry), &self)) {
            DisableThreadLibraryCalls(self);
        }
    }

    /// Frees the error registry when the library is unloaded, but not at the end of the process.
    ~LoadAndUnload() {
        if (!IsProcessEnding()) {
            ClearErrorRegistry();
        }
    }
} g_loadAndUnload;

}  // namespace
}  // namespace velm
