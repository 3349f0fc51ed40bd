/// @file
/// What a client does over and over must leave nothing behind.
#include <windows.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>

#include "MessageLoop.h"
#include "ProcessResources.h"
#include "velm/core/Thread.h"
#include "velm/LoadClassPointerFromDll.h"
#include "velm/MemoryInfo.h"
#include "velm/Scheduling.h"
#include "velm/ThreadCaller.h"
#include "velm/Watchdog.h"
#include "velm/WindowsUtil.h"

namespace velm {
namespace {

constexpr int kWarmUp = 100;
constexpr int kCycles = 1000;
// The heap of the system moves a little by itself; a leak of 40 bytes in each cycle is found.
constexpr long long kHeapSlack = 40 * kCycles - 1;

struct Cycle {
    const char* name;
    std::function<void()> run;
};

/// The system may still be winding up the last thread.
ProcessResources SettledResources(long long threads) {
    for (int i = 0; i < 100 && GetProcessResources().threads > threads; ++i) {
        Thread::Sleep(10);
    }
    return GetProcessResources();
}

void CyclePlugin(const std::string& path) {
    LoadClassPointerFromDll plugin;
    void* object = nullptr;
    EXPECT_EQ(plugin.Initialize(path.c_str(), &object), 0);
    EXPECT_EQ(plugin.Terminate(), 0);
}

void CycleThread() {
    ThreadCaller caller;
    caller.Start([](void*) { return 0; }, nullptr, "cycle");
    EXPECT_EQ(caller.GetState(), 0);
    caller.Stop();
}

void CycleWatchdog(HWND window) {
    static WatchdogChecker checker;
    EXPECT_EQ(Watchdog::GetInstance()->Start(window, &checker), 0U);
    EXPECT_EQ(Watchdog::GetInstance()->Stop(), 0U);
}

void CycleProcessServices() {
    MemoryInfo::GetInstance()->Initialize("cycle");
    MemoryInfo::GetInstance()->Check("cycle");
    MemoryInfo::GetInstance()->Finalize();
    SchedulingThread().StartThreadPriorityHigh();
}

void CycleCalls(HWND window) {
    char text[100];
    wchar_t value[10];
    WindowsUtil::CallSetWindowText(window, "text");
    WindowsUtil::CallGetClassName(window, text, 100);
    WindowsUtil::CallMessageBox(window, "not converted:", nullptr, 0);
    WindowsUtil::CallGetPrivateProfileString("s", "k", "d", value, 10, "./no.ini");
    int width = 0;
    int height = 0;
    WindowsUtil::GetMaxScreenSize(&width, &height, 0);
}

TEST(Cycles, AThousandLeaveNothingBehind) {
    const UniqueWindow window = MakeWindow();
    std::string plugin;
    WindowsUtil::GetFullPathForExecDirFile(plugin, "sample_plugin" VELM_MODULE_SUFFIX);
    const Cycle cycles[] = {
        {"plug-in", [&] { CyclePlugin(plugin); }},
        {"thread", [] { CycleThread(); }},
        {"watchdog", [&] { CycleWatchdog(window.get()); }},
        {"process services", [] { CycleProcessServices(); }},
        {"calls", [&] { CycleCalls(window.get()); }},
    };
    for (const Cycle& cycle : cycles) {
        SCOPED_TRACE(cycle.name);
        const ProcessResources start = GetProcessResources();
        for (int i = 0; i < kWarmUp; ++i) {
            cycle.run();
        }
        const ProcessResources before = SettledResources(start.threads);
        for (int i = 0; i < kCycles; ++i) {
            cycle.run();
        }
        const ProcessResources after = SettledResources(before.threads);
        EXPECT_EQ(after.handles, before.handles);
        EXPECT_EQ(after.threads, before.threads);
        EXPECT_LE(after.memory, before.memory + kHeapSlack);
        std::printf("%-18s handles %+lld, threads %+lld, heap %+lld bytes\n", cycle.name,
                    after.handles - before.handles, after.threads - before.threads,
                    after.memory - before.memory);
    }
}

}  // namespace
}  // namespace velm
