/// @file
/// Loads and frees the library by hand. The program is not linked with it.
#include <windows.h>
#include <gtest/gtest.h>

#include "../thread/MessageLoop.h"
#include "Library.h"

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

TEST(Unload, UnusedLibraryLeavesAgain) {
    for (int round = 0; round < 10; ++round) {
        Library library;
        ASSERT_TRUE(library.IsLoaded());
        EXPECT_TRUE(library.Free());
    }
}

}  // namespace
}  // namespace velm
