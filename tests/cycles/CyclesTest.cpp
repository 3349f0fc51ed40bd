/// @file
/// What a client does over and over must leave nothing behind.
#include <windows.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "MessageLoop.h"
#include "ProcessResources.h"
#include "velm/core/Thread.h"
#include "velm/VelmUtil.h"

namespace velm {
namespace {

/// The system may still be winding up the last thread.
ProcessResources SettledResources(long long threads) {
    for (int i = 0; i < 100 && GetProcessResources().threads > threads; ++i) {
        Thread::Sleep(10);
    }
    return GetProcessResources();
}

TEST(Cycles, ThousandsLeaveNothingBehind) {
    const char* const given = std::getenv("VELM_CYCLES");  // another number
    const int count = given != nullptr ? std::atoi(given) : 1000;
    const UniqueWindow window = MakeWindow();
    WatchdogChecker checker;
    std::string path;
    WindowsUtil::GetFullPathForExecDirFile(path, "sample_plugin" VELM_MODULE_SUFFIX);
    const struct {
        const char* name;
        std::function<void()> run;
        int each = 1;  // of so many cycles, for what takes long
    } cycles[] = {
        {"plug-in",
         [&] {
             LoadClassPointerFromDll plugin;
             void* object = nullptr;
             EXPECT_EQ(plugin.Initialize(path.c_str(), &object), 0);
             EXPECT_EQ(plugin.Terminate(), 0);
         }},
        {"thread",
         [] {
             ThreadCaller caller;
             caller.Start([](void*) { return 0; }, nullptr, "cycle");
             EXPECT_EQ(caller.GetState(), 0);
             caller.Stop();
         }},
        {"watchdog",
         [&] {
             EXPECT_EQ(Watchdog::GetInstance()->Start(window.get(), &checker), 0U);
             EXPECT_EQ(Watchdog::GetInstance()->Stop(), 0U);
         }},
        {"process services",
         [] {
             MemoryInfo::GetInstance()->Initialize("cycle");
             MemoryInfo::GetInstance()->Check("cycle");
             MemoryInfo::GetInstance()->Finalize();
             SchedulingThread().StartThreadPriorityHigh();
         }},
        {"calls",
         [&] {
             char name[100];
             int width = 0;
             int height = 0;
             WindowsUtil::CallSetWindowText(window.get(), "text");
             WindowsUtil::CallGetClassName(window.get(), name, 100);
             WindowsUtil::GetMaxScreenSize(&width, &height, 0);
         },
         10},
        {"frame ring", [] { EXPECT_EQ(AudioFrameStream(480, 2, 2, 16).Initialize(), 0U); }, 50},
        {"configuration",
         [] {
             std::string text;
             EnvConfigReader().GetIfOk("PATH", text);
             IniConfigReader().GetIfOk("./no.ini", "s", "k", "d", text);
             EXPECT_EQ(text, "d");
         }},
        {"resource manager",
         [] {
             EXPECT_EQ(D3D9ResourceManager::Initialize(), 0U);
             D3D9Surface().Bind(nullptr);
             D3D9ResourceManager::OnRecoverLost(nullptr, {});
             EXPECT_EQ(D3D9ResourceManager::Finalize(), 0U);
         }},
    };
    for (const auto& cycle : cycles) {
        SCOPED_TRACE(cycle.name);
        const int cycleCount = count / cycle.each;
        const ProcessResources start = GetProcessResources();
        for (int i = 0; i < cycleCount / 10 + 1; ++i) {
            cycle.run();
        }
        const ProcessResources before = SettledResources(start.threads);
        for (int i = 0; i < cycleCount; ++i) {
            cycle.run();
        }
        const ProcessResources after = SettledResources(before.threads);
        EXPECT_EQ(after.handles, before.handles);
        EXPECT_EQ(after.threads, before.threads);
        EXPECT_EQ(after.objects, before.objects);
        // The heaps of the system move a little by themselves, and grow by pages; a leak of 40 bytes in each
        // of many cycles is found.
        EXPECT_LT(after.memory, before.memory + 40LL * cycleCount + 1000);
        EXPECT_LT(after.reserved, before.reserved + 40LL * cycleCount + (1 << 20));
        std::printf(
            "%-18s %6d cycles: handles %+lld, threads %+lld, objects %+lld, heap %+lld, private %+lld\n",
            cycle.name, cycleCount, after.handles - before.handles, after.threads - before.threads,
            after.objects - before.objects, after.memory - before.memory, after.reserved - before.reserved);
    }
}

}  // namespace
}  // namespace velm
