#include <velm/VelmUtil.h>

#include <atomic>

#include "MessageLoop.h"
#include "Operation.h"
#include "velm/core/Thread.h"

namespace velm::test {
namespace {

std::atomic<int> g_running;

void WaitForRuns(int count) {
    while (g_running < count) {
        Thread::Sleep(1);
    }
}

long long StartCaller(Attempt& attempt) {
    g_running = 0;
    const auto run = [](void*) { return ++g_running; };
    ThreadCaller caller;
    caller.Start(run, nullptr, "earlier");
    WaitForRuns(1);
    int started = -2;
    attempt([&] {
        caller.Start(run, nullptr, kText.c_str());
        started = caller.GetState();
        return WaitForRuns(started == 0 ? 2 : 1), 0;
    });
    caller.Stop();
    EXPECT_EQ(caller.GetState(), started == 0 ? 65535 : started);
    return started;
}

long long RaiseThread(Attempt& attempt) {
    SchedulingThread thread;
    SetLastError(0);
    const long long outcome = attempt([&] { return thread.StartThreadPriorityHigh(); });
    EXPECT_EQ(outcome == 1, GetLastError() == 0);
    EXPECT_EQ(thread.EndThreadPriority(), outcome == 1);
    return outcome;
}

long long StartWatchdog(Attempt& attempt) {
    const UniqueWindow window = MakeWindow();
    WatchdogChecker checker;
    Watchdog::GetInstance()->SetElapse(10);
    const long long code = attempt([&] { return Watchdog::GetInstance()->Start(window.get(), &checker); });
    EXPECT_EQ(RunLoop(window.get(), 30).ticks > 0, code == 0);
    Watchdog::GetInstance()->Stop();
    return code;
}

long long ReportMemory(Attempt& attempt) {
    MemoryInfo info;
    return attempt([&] {
        const ErrorCode result = info.Initialize("");
        info.Check("");
        info.Finalize();
        return result;
    });
}

}  // namespace

Operations ThreadOperations() {
    return {
        {.what = "ThreadCaller::Start",
         .run = StartCaller,
         .noMemory = {1, 2, 3},
         .failures = {{"_beginthreadex", 1},
                      {"GetModuleHandleW", 0},
                      {"GetProcAddress", 0},
                      {"MultiByteToWideChar", 0},
                      {"SetThreadDescription", 0},
                      {"WaitOnAddress", 0}}},
        {.what = "SchedulingThread::StartThreadPriorityHigh",
         .run = RaiseThread,
         .outcome = 1,
         .noMemory = {0},
         .failures = {{"AvSetMmThreadCharacteristicsW", 0}, {"AvSetMmThreadPriority", 0}}},
        {.what = "Watchdog::Start",
         .run = StartWatchdog,
         .noMemory = {VELM_ERROR_UTIL_UNKNOWN},
         .failures = {{"SetTimer", VELM_ERROR_UTIL_UNKNOWN}}},
        {.what = "MemoryInfo",
         .run = ReportMemory,
         .noMemory = {0xFFFFFFFF},
         .failures = {{"OpenProcess", 0xFFFFFFFF}, {"GetProcessMemoryInfo", 0}, {"CloseHandle", 0}}},
    };
}

}  // namespace velm::test
