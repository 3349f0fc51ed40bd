#include <windows.h>

#include <chrono>
#include <mutex>
#include <optional>

#include "Intercept.h"
#include "velm/posix/Control.h"

namespace velm::posix {
namespace {

struct Reading {
    unsigned long long count;
    unsigned long long frequency;
};

std::mutex g_mutex;
std::optional<Reading> g_fixed;

std::optional<Reading> Fixed() {
    const std::lock_guard lock(g_mutex);
    return g_fixed;
}

}  // namespace

void SetPerformanceCounter(unsigned long long count, unsigned long long frequency) {
    const std::lock_guard lock(g_mutex);
    g_fixed = Reading{count, frequency};
}

void ResetClock() {
    const std::lock_guard lock(g_mutex);
    g_fixed.reset();
}

}  // namespace velm::posix

using namespace velm::posix;

BOOL QueryPerformanceCounter(LARGE_INTEGER* count) {
    if (MustFail("QueryPerformanceCounter")) {
        return FALSE;
    }
    if (const auto fixed = Fixed()) {
        count->QuadPart = static_cast<LONGLONG>(fixed->count);
    } else {
        count->QuadPart =
            std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
    }
    return TRUE;
}

BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    if (MustFail("QueryPerformanceFrequency")) {
        return FALSE;
    }
    const auto fixed = Fixed();
    frequency->QuadPart = fixed ? static_cast<LONGLONG>(fixed->frequency) : 1'000'000'000;
    return TRUE;
}
