#include <windows.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <map>
#include <optional>

#include "Intercept.h"
#include "Text.h"

namespace velm::posix {
namespace {

using Clock = std::chrono::steady_clock;

constexpr UINT kShortestPeriod = 10;  // in milliseconds

struct Window {
    DWORD thread = 0;
    std::wstring className;
    std::wstring text;
};

struct Timer {
    HWND window = nullptr;
    UINT_PTR id = 0;
    std::chrono::milliseconds period{};
    TIMERPROC function = nullptr;
    Clock::time_point due;
};

struct Desktop {
    std::condition_variable changed;
    std::map<HWND, Window> windows;
    std::vector<Timer> timers;
    std::map<DWORD, int> quitCodes;  // by thread, for pending quit messages
    LONG_PTR lastHandle = 0;

    Window* Find(HWND handle) {
        const auto found = windows.find(handle);
        if (found == windows.end()) {
            SetLastError(ERROR_INVALID_WINDOW_HANDLE);
            return nullptr;
        }
        return &found->second;
    }

    /// Returns the thread's timer that is due first; null when it has none.
    Timer* NextTimer(DWORD thread) {
        Timer* next = nullptr;
        for (Timer& timer : timers) {
            if (windows[timer.window].thread == thread && (next == nullptr || timer.due < next->due)) {
                next = &timer;
            }
        }
        return next;
    }

    /// Removes and returns the calling thread's next message, if one is pending.
    std::optional<MSG> TakeMessage() {
        const DWORD thread = GetCurrentThreadId();
        MSG message{};
        if (const auto quit = quitCodes.find(thread); quit != quitCodes.end()) {
            message.message = WM_QUIT;
            message.wParam = static_cast<WPARAM>(quit->second);
            quitCodes.erase(quit);
            return message;
        }
        Timer* const timer = NextTimer(thread);
        if (timer == nullptr || timer->due > Clock::now()) {
            return std::nullopt;
        }
        timer->due = Clock::now() + timer->period;
        message.hwnd = timer->window;
        message.message = WM_TIMER;
        message.wParam = timer->id;
        message.lParam = reinterpret_cast<LPARAM>(timer->function);
        return message;
    }
};

/// @return units copied, without the NUL
int CopyTextOut(const std::wstring& text, LPWSTR buffer, int size) {
    if (buffer == nullptr || size <= 0) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    return static_cast<int>(CopyText(text, buffer, static_cast<std::size_t>(size)));
}

}  // namespace
}  // namespace velm::posix

using namespace velm::posix;

HWND CreateWindowExW(DWORD, LPCWSTR className, LPCWSTR text, DWORD, int, int, int, int, HWND, HMENU,
                     HINSTANCE, LPVOID) {
    if (MustFail("CreateWindowExW")) {
        return nullptr;
    }
    const Locked<Desktop> desktop;
    desktop->lastHandle += 2;
    const auto handle = reinterpret_cast<HWND>(desktop->lastHandle);
    desktop->windows[handle] = {GetCurrentThreadId(), className, text != nullptr ? text : L""};
    return handle;
}

BOOL DestroyWindow(HWND window) {
    if (MustFail("DestroyWindow")) {
        return FALSE;
    }
    const Locked<Desktop> desktop;
    if (desktop->Find(window) == nullptr) {
        return FALSE;
    }
    desktop->windows.erase(window);
    std::erase_if(desktop->timers, [&](const Timer& timer) { return timer.window == window; });
    return TRUE;
}

int GetClassNameW(HWND window, LPWSTR name, int size) {
    if (MustFail("GetClassNameW")) {
        return 0;
    }
    const Locked<Desktop> desktop;
    const Window* const found = desktop->Find(window);
    return found != nullptr ? CopyTextOut(found->className, name, size) : 0;
}

BOOL SetWindowTextW(HWND window, LPCWSTR text) {
    if (MustFail("SetWindowTextW")) {
        return FALSE;
    }
    const Locked<Desktop> desktop;
    Window* const found = desktop->Find(window);
    if (found == nullptr) {
        return FALSE;
    }
    return WithinSystem(FALSE, [&] {
        found->text = text != nullptr ? text : L"";
        RecordShown({"SetWindowTextW", {found->text}, {}});
        return TRUE;
    });
}

int GetWindowTextW(HWND window, LPWSTR text, int size) {
    const Locked<Desktop> desktop;
    const Window* const found = desktop->Find(window);
    return found != nullptr ? CopyTextOut(found->text, text, size) : 0;
}

UINT_PTR SetTimer(HWND window, UINT_PTR id, UINT milliseconds, TIMERPROC function) {
    if (MustFail("SetTimer")) {
        return 0;
    }
    const Locked<Desktop> desktop;
    if (desktop->Find(window) == nullptr) {
        return 0;
    }
    std::erase_if(desktop->timers,
                  [&](const Timer& timer) { return timer.window == window && timer.id == id; });
    const std::chrono::milliseconds period(std::max(milliseconds, kShortestPeriod));
    return WithinSystem(UINT_PTR{0}, [&] {
        desktop->timers.push_back({window, id, period, function, Clock::now() + period});
        desktop->changed.notify_all();
        return id != 0 ? id : 1;
    });
}

BOOL KillTimer(HWND window, UINT_PTR id) {
    if (MustFail("KillTimer")) {
        return FALSE;
    }
    const Locked<Desktop> desktop;
    return std::erase_if(desktop->timers,
                         [&](const Timer& timer) { return timer.window == window && timer.id == id; }) != 0;
}

BOOL GetMessageW(MSG* message, HWND, UINT, UINT) {
    Locked<Desktop> desktop;
    for (;;) {
        if (const auto taken = desktop->TakeMessage()) {
            *message = *taken;
            return message->message != WM_QUIT;
        }
        if (const Timer* const timer = desktop->NextTimer(GetCurrentThreadId())) {
            const Clock::time_point due = timer->due;
            desktop->changed.wait_until(desktop.Lock(), due);
        } else {
            desktop->changed.wait(desktop.Lock());
        }
    }
}

BOOL PeekMessageW(MSG* message, HWND, UINT, UINT, UINT) {
    const Locked<Desktop> desktop;
    const auto taken = desktop->TakeMessage();
    if (taken) {
        *message = *taken;
    }
    return taken.has_value();
}

LRESULT DispatchMessageW(const MSG* message) {
    if (message->message == WM_TIMER && message->lParam != 0) {
        const auto time =
            std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch());
        reinterpret_cast<TIMERPROC>(message->lParam)(message->hwnd, WM_TIMER, message->wParam,
                                                     static_cast<DWORD>(time.count()));
    }
    return 0;
}

void PostQuitMessage(int exitCode) {
    if (MustFail("PostQuitMessage")) {
        return;
    }
    const Locked<Desktop> desktop;
    WithinSystem(0, [&] { return desktop->quitCodes[GetCurrentThreadId()] = exitCode; });
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT type) {
    if (MustFail("MessageBoxW")) {
        return 0;
    }
    return WithinSystem(0, [&] { return RecordShown({"MessageBoxW", {text, caption}, {type}}), IDOK; });
}

HANDLE LoadImageW(HINSTANCE, LPCWSTR name, UINT type, int width, int height, UINT flags) {
    if (MustFail("LoadImageW")) {
        return nullptr;
    }
    return WithinSystem(HANDLE{}, [&] {
        RecordShown({"LoadImageW", {name}, {type, width, height, flags}});
        return reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(0x10));
    });
}
