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

// Memory that the runtime sets aside for each load would add up: MinGW's thread library keeps 2 KiB of it,
// but the 72 KiB for exceptions must come back.
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
    EXPECT_LT(after.memory, before.memory + 4096 * kRounds);
}

}  // namespace
}  // namespace velm
