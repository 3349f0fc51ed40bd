#include <windows.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <vector>

#include "Command.h"
#include "SelfTests.h"
#include "velm/AutoResetSyncEventWrapper.h"
#include "velm/core/Tick.h"
#include "velm/ThreadCaller.h"
#include "velm/Watchdog.h"

namespace velmdiag::report {
namespace {

/// Two threads that wake each other alternately.
class Exchange {
public:
    static constexpr int kRounds = 2000;

    /// The median time from waking the other thread to being woken by it, in microseconds.
    double MedianTime() {
        velm::ThreadCaller thread;
        thread.Start([](void* self) { return static_cast<Exchange*>(self)->Answer(); }, this, "answer");
        Require(thread.GetState() == 0, "a thread cannot be started");
        std::vector<double> times(kRounds);
        for (double& time : times) {
            const unsigned long long start = velm::Tick::Get().GetCount();
            m_question.Trigger();
            m_answer.Wait();
            time = SecondsSince(start) * 1e6;
        }
        thread.Stop();
        Require(thread.GetState() == 65535, "a thread did not end");
        std::ranges::nth_element(times, times.begin() + kRounds / 2);
        return times[kRounds / 2];
    }

private:
    int Answer() {
        for (int i = 0; i < kRounds; ++i) {
            m_question.Wait();
            m_answer.Trigger();
        }
        return 0;
    }

    velm::AutoResetSyncEventWrapper m_question;
    velm::AutoResetSyncEventWrapper m_answer;
};

/// Reports activity for a few calls, then a stall.
struct StallingChecker : velm::WatchdogChecker {
    static constexpr int kAliveCalls = 3;
    int calls = 0;
    bool IsActive() override { return ++calls <= kAliveCalls; }
};

struct SelfTestWindowCloser {
    void operator()(HWND window) const { DestroyWindow(window); }
};

/// Runs the message loop until the watchdog ends it.
/// @return the exit code of the loop; -1 on timeout
int ExitCodeOfLoop(HWND window, unsigned int timeout) {
    constexpr UINT_PTR kEndTimer = 1;
    Require(SetTimer(window, kEndTimer, timeout, nullptr) != 0, "a timer cannot be created");
    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (message.hwnd == window && message.message == WM_TIMER && message.wParam == kEndTimer) {
            return -1;
        }
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}

/// @return milliseconds until the watchdog ended the loop
double CheckWatchdog() {
    constexpr int kExitCode = 23;
    const std::unique_ptr<std::remove_pointer_t<HWND>, SelfTestWindowCloser> window(
        CreateWindowExW(0, L"STATIC", L"velmdiag report", 0, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr));
    if (window == nullptr) {
        throw Failure{"the watchdog needs a window, which cannot be created", kNotDone};
    }
    StallingChecker checker;
    velm::Watchdog* const watchdog = velm::Watchdog::GetInstance();
    watchdog->SetElapse(50);
    watchdog->SetExitCode(kExitCode);
    const unsigned long long start = velm::Tick::Get().GetCount();
    Require(!watchdog->Start(window.get(), &checker).IsFailed(), "the watchdog cannot be started");
    const int exitCode = ExitCodeOfLoop(window.get(), 5000);
    watchdog->Stop();
    Require(exitCode == kExitCode && checker.calls > StallingChecker::kAliveCalls,
            "the watchdog did not end a stalled loop");
    return SecondsSince(start) * 1000;
}

}  // namespace

std::string TestProcesses(SelfTest& test) {
    const double wakeUp = Exchange().MedianTime();
    AddCount(test.figures, "wake_ups", 2ULL * Exchange::kRounds);
    AddTime(test.figures, "round_trip_between_threads", wakeUp);
    const double watchdog = CheckWatchdog();
    AddTime(test.figures, "watchdog_period", 50'000);
    AddTime(test.figures, "stalled_loop_ended_after", watchdog * 1000);
    return Grouped(Exchange::kRounds) + " round trips between two threads, " + Fixed(wakeUp, 0) +
           " \u00b5s each; the watchdog ended a stalled loop.";
}

}  // namespace velmdiag::report
