#pragma once

#include <windows.h>
#include <d3d9.h>

#include <memory>
#include <type_traits>

namespace velm::platform {

/// Gives back the one reference that a pointer holds.
struct InterfaceReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};

template <typename Interface>
using InterfacePtr = std::unique_ptr<Interface, InterfaceReleaser>;

/// The system's Direct3D 9; empty where it has none.
InterfacePtr<IDirect3D9> CreateDirect3D9();

struct WindowCloser {
    void operator()(HWND window) const;
};

using WindowPtr = std::unique_ptr<std::remove_pointer_t<HWND>, WindowCloser>;

/// A window to draw in; empty when there can be none. It belongs to the calling thread.
/// @param title  in UTF-8
/// @param width, height  of its inner area, in pixels
/// @param visible  whether it is shown
WindowPtr CreateDrawingWindow(const char* title, int width, int height, bool visible);

/// Hands out the messages that wait for the calling thread's windows.
void PumpMessages();

}  // namespace velm::platform
