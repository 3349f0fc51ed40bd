#include "velm/platform/Direct3D.h"

namespace velm::platform {

InterfacePtr<IDirect3D9> CreateDirect3D9() {
    return nullptr;
}

void WindowCloser::operator()(HWND) const {}

WindowPtr CreateDrawingWindow(const char*, int, int, bool) {
    return nullptr;
}

void PumpMessages() {}

}  // namespace velm::platform
