#include <windows.h>

#include <chrono>

#include "Intercept.h"

using namespace velm::posix;

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    if (MustFail("QueryPerformanceCounter")) {
        return FALSE;
    }
    const auto fixed = Locked<Settings>()->clock;
    const std::chrono::nanoseconds now = std::chrono::steady_clock::now().time_since_epoch();
    count->QuadPart = fixed ? static_cast<LONGLONG>(fixed->count) : now.count();
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    if (MustFail("QueryPerformanceFrequency")) {
        return FALSE;
    }
    const auto fixed = Locked<Settings>()->clock;
    frequency->QuadPart = fixed ? static_cast<LONGLONG>(fixed->frequency) : 1'000'000'000;
    return TRUE;
}
