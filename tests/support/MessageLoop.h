#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace velm::test {

struct WindowDestroyer {
    void operator()(HWND window) const { DestroyWindow(window); }
};
using UniqueWindow = std::unique_ptr<std::remove_pointer_t<HWND>, WindowDestroyer>;

inline UniqueWindow MakeWindow(const wchar_t* className = L"STATIC") {
    return UniqueWindow(
        CreateWindowExW(0, className, L"", 0, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr));
}

/// What a message loop received.
struct LoopResult {
    bool quit = false;
    int exitCode = 0;
    int ticks = 0;  // timer messages with a callback
};

/// Runs the calling thread's message loop until a quit message, or for a time.
inline LoopResult RunLoop(HWND window, UINT milliseconds) {
    constexpr UINT_PTR kEndTimer = 77;
    LoopResult result;
    SetTimer(window, kEndTimer, milliseconds, nullptr);
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.message == WM_TIMER && message.wParam == kEndTimer) {
            KillTimer(window, kEndTimer);
            return result;
        }
        result.ticks += message.message == WM_TIMER && message.lParam != 0;
        DispatchMessageW(&message);
    }
    KillTimer(window, kEndTimer);
    result.quit = true;
    result.exitCode = static_cast<int>(message.wParam);
    return result;
}

}  // namespace velm::test
