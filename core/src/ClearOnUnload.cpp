#include "velm/core/ProcessEnd.h"

namespace velm {

void ClearErrorRegistry();

namespace {

/// Clears the error registry as Windows unloads the library, but not at the end of the process.
struct ClearOnUnload {
    ~ClearOnUnload() {
        if (!IsProcessEnding()) {
            ClearErrorRegistry();
        }
    }
} g_clearOnUnload;

}  // namespace
}  // namespace velm
