/// @file
/// Loads and frees the library by hand. The program is not linked with it.
#include <windows.h>
#include <gtest/gtest.h>

#include "Library.h"
#include "MessageLoop.h"
#include "ProcessResources.h"

namespace velm {
namespace {

TEST(Unload, NotOneTickReachesUnloadedCode) {
    const UniqueWindow window = MakeWindow();
    Checker checker;
    for (int round = 0; round < 3; ++round) {
        Library library;
        ASSERT_TRUE(library.IsLoaded());
        library.StartWatchdog(window.get(), &checker);
        EXPECT_GE(RunLoop(window.get(), 5 * kPeriod).ticks, 1);
        const int asked = checker.Asked();
        EXPECT_TRUE(library.Free());
        const LoopResult after = RunLoop(window.get(), 5 * kPeriod);
        EXPECT_EQ(after.ticks, 0);
        EXPECT_FALSE(after.quit);
        EXPECT_EQ(checker.Asked(), asked);
        EXPECT_FALSE(KillTimer(window.get(), 0)) << "the timer outlived the library";
    }
}

// Memory that the runtime sets aside for each load would add up: MinGW's thread library keeps 2 KiB of it,
// but the 72 KiB for exceptions must come back.
TEST(Unload, ManyLoadsLeaveNothingBehind) {
    const UniqueWindow window = MakeWindow();
    Checker checker;
    const auto load = [&] {
        Library library;
        ASSERT_TRUE(library.IsLoaded());
        library.StartWatchdog(window.get(), &checker);
        library.OpenMemoryInfo();
        EXPECT_TRUE(library.Free());
    };
    for (int round = 0; round < 10; ++round) {
        load();
    }
    const ProcessResources before = GetProcessResources();
    constexpr int kRounds = 50;
    for (int round = 0; round < kRounds; ++round) {
        load();
    }
    const ProcessResources after = GetProcessResources();
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_LT(after.memory, before.memory + 4096 * kRounds);
}

}  // namespace
}  // namespace velm
