#include "velm/Watchdog.h"

#include <windows.h>

#include <new>

#include "thread/FirstUse.h"

namespace velm {
namespace {

// The timer id requested from SetTimer.
constexpr UINT_PTR kTimer = 0;

constinit FirstUse<Watchdog> g_watchdog;

/// Kills the watchdog's timer of a window. A window's timer is identified by the id that was requested.
/// SetTimer's result, never 0, may be the id of another timer, so it is used only if there is none by the
/// requested id.
void RemoveTimer(HWND window, unsigned long long timerId) {
    if (!KillTimer(window, kTimer)) {
        KillTimer(window, static_cast<UINT_PTR>(timerId));
    }
}

}  // namespace

WatchdogChecker::~WatchdogChecker() = default;

bool WatchdogChecker::IsActive() {
    return true;
}

Watchdog::Watchdog()
    : mActive(false), mWindow(nullptr), mTimerId(100), mElapse(1000), mExitCode(16), mChecker(nullptr) {}

Watchdog::Watchdog(const Watchdog& other) = default;

Watchdog::~Watchdog() {
    if (mActive) {
        Stop();
    }
}

Watchdog* Watchdog::GetInstance() {
    return g_watchdog.Get([](void* place) { return new (place) Watchdog; });
}

void Watchdog::SetElapse(unsigned int milliseconds) {
    mElapse = milliseconds;
}

void Watchdog::SetExitCode(int exitCode) {
    mExitCode = exitCode;
}

int Watchdog::GetExitCode() {
    return mExitCode;
}

ErrorCode Watchdog::Start(HWND__* window, WatchdogChecker* checker) {
    if (window == nullptr || checker == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    const unsigned long long earlierTimerId = mTimerId;
    mTimerId = SetTimer(window, kTimer, mElapse, [](HWND owner, UINT message, UINT_PTR timerId, DWORD time) {
        TimerProc(owner, message, timerId, time);
    });
    if (mTimerId == 0) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    // SetTimer replaces a timer of the same window, but one of another window would keep running.
    if (mWindow != nullptr && mWindow != window) {
        RemoveTimer(mWindow, earlierTimerId);
    }
    mWindow = window;
    mChecker = checker;
    mActive = true;
    return 0;
}

ErrorCode Watchdog::Stop() {
    mActive = false;
    if (mWindow != nullptr) {
        RemoveTimer(mWindow, mTimerId);
    }
    mWindow = nullptr;
    mTimerId = 0;
    mChecker = nullptr;
    return 0;
}

bool Watchdog::IsActive() {
    if (!mActive) {
        return true;
    }
    return mChecker != nullptr && mChecker->IsActive();
}

void Watchdog::TimerProc(HWND__*, unsigned int, unsigned long long, unsigned long) {
    Watchdog* const watchdog = GetInstance();
    if (!watchdog->mActive) {
        return;
    }
    if (watchdog->mChecker != nullptr && watchdog->mChecker->IsActive()) {
        return;
    }
    PostQuitMessage(watchdog->mExitCode);
}

}  // namespace velm
