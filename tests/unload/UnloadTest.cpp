/// @file
/// Loads and frees the library by hand. The program is not linked with it.
#include <windows.h>
#include <gtest/gtest.h>

#include "Library.h"
#include "MessageLoop.h"
#include "ProcessResources.h"

namespace velm {
namespace {

using namespace test;

// Memory that a load leaves behind adds up: the runtime sets 72 KiB aside for exceptions.
TEST(Unload, ManyLoadsLeaveNothingBehindAndNotOneTickReachesUnloadedCode) {
    constexpr int kRounds = 50;
    const UniqueWindow window = MakeWindow();
    ProcessResources before;
    for (int round = -10; round < kRounds; ++round) {
        if (round == 0) {
            before = GetProcessResources();
        }
        WatchdogChecker checker;
        const Library library;
        library.StartWatchdog(window.get(), &checker);
        library.OpenMemoryInfo();
        library.ConvertPicture();
        EXPECT_TRUE(library.IsSparedThreads());
        if (round < -7) {
            EXPECT_GE(RunLoop(window.get(), 5 * kPeriod).ticks, 1);
            EXPECT_GE(checker.asked, 1);
        }
        EXPECT_TRUE(library.Free());
        if (round < -7) {
            EXPECT_EQ(RunLoop(window.get(), 5 * kPeriod).ticks, 0);
        }
        EXPECT_FALSE(KillTimer(window.get(), 0)) << "the timer outlived the library";
    }
    const ProcessResources after = GetProcessResources();
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_LT(after.memory, before.memory + 16 * kRounds);
}

}  // namespace
}  // namespace velm
