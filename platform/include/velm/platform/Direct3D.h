#pragma once

#include <windows.h>
#include <d3d9.h>

#include <memory>
#include <type_traits>

namespace velm::platform {

/// Releases a pointer's reference.
struct InterfaceReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

template <typename Interface>
using InterfacePtr = std::unique_ptr<Interface, InterfaceReleaser>;

/// Creates the system's Direct3D 9 object; null when there is none.
InterfacePtr<IDirect3D9> CreateDirect3D9();

struct WindowCloser {
    void operator()(HWND window) const;
};

using WindowPtr = std::unique_ptr<std::remove_pointer_t<HWND>, WindowCloser>;

/// Creates a window to draw in, owned by the calling thread; null on failure.
/// @param title  UTF-8
/// @param width, height  of the client area, in pixels
/// @param visible  whether the window is shown
WindowPtr CreateDrawingWindow(const char* title, int width, int height, bool visible);

/// Dispatches the pending messages of the calling thread's windows.
void PumpMessages();

}  // namespace velm::platform
