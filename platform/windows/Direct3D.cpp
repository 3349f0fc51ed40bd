#include "velm/platform/Direct3D.h"

#include <string>

namespace velm::platform {
namespace {

constexpr wchar_t kWindowClass[] = L"VelmDrawingWindow";

std::wstring Utf16(const char* utf8) {
    wchar_t text[256] = L"";
    MultiByteToWideChar(CP_UTF8, 0, utf8, -1, text, static_cast<int>(std::size(text)) - 1);
    return text;
}

}  // namespace

// The library is loaded on demand and never unloaded, because its objects may exist until the process ends.
InterfacePtr<IDirect3D9> CreateDirect3D9() {
    const HMODULE module = LoadLibraryExW(L"d3d9.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    if (module == nullptr) {
        return nullptr;
    }
    const auto create = reinterpret_cast<IDirect3D9*(WINAPI*)(UINT)>(
        reinterpret_cast<void*>(GetProcAddress(module, "Direct3DCreate9")));
    return InterfacePtr<IDirect3D9>(create != nullptr ? create(D3D_SDK_VERSION) : nullptr);
}

void WindowCloser::operator()(HWND window) const {
    DestroyWindow(window);
}

WindowPtr CreateDrawingWindow(const char* title, int width, int height, bool visible) {
    const HINSTANCE module = GetModuleHandleW(nullptr);
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = module;
    windowClass.lpszClassName = kWindowClass;
    RegisterClassW(&windowClass);  // harmless if the class is registered already
    constexpr DWORD kStyle = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU;
    RECT rect{0, 0, width, height};
    AdjustWindowRect(&rect, kStyle, FALSE);
    return WindowPtr(CreateWindowExW(
        0, kWindowClass, Utf16(title).c_str(), kStyle | (visible ? WS_VISIBLE : 0), CW_USEDEFAULT,
        CW_USEDEFAULT, rect.right - rect.left, rect.bottom - rect.top, nullptr, nullptr, module, nullptr));
}

void PumpMessages() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        DispatchMessageW(&message);
    }
}

}  // namespace velm::platform
