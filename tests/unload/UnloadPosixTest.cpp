#include <windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "Library.h"
#include "MessageLoop.h"
#include "velm/posix/Control.h"

namespace velm {
namespace {

TEST(UnloadPosix, ALibraryThatCannotBeSparedThreadNoticesStillLoads) {
    posix::FailCall("DisableThreadLibraryCalls", ERROR_GEN_FAILURE);
    posix::StartRecording();
    EXPECT_TRUE(Library().IsLoaded());
    const auto calls = posix::RecordedCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "DisableThreadLibraryCalls"), 1);
    posix::Reset();
}

// The watchdog ends with KillTimer, the memory report with CloseHandle.
TEST(UnloadPosix, SingletonsEndInTheReverseOrderOfTheirCreation) {
    using Calls = std::vector<std::string>;
    const UniqueWindow window = MakeWindow();
    const unsigned int handles = posix::OpenHandles();
    for (const bool watchdogFirst : {true, false}) {
        SCOPED_TRACE(watchdogFirst);
        Checker checker;
        Library library;
        ASSERT_TRUE(library.IsLoaded());
        if (watchdogFirst) {
            library.StartWatchdog(window.get(), &checker);
        }
        library.OpenMemoryInfo();
        if (!watchdogFirst) {
            library.StartWatchdog(window.get(), &checker);
        }
        posix::StartRecording();
        EXPECT_TRUE(library.Free());
        Calls calls = posix::RecordedCalls();
        posix::Reset();
        std::erase_if(calls,
                      [](const std::string& call) { return call != "KillTimer" && call != "CloseHandle"; });
        EXPECT_EQ(calls,
                  watchdogFirst ? (Calls{"CloseHandle", "KillTimer"}) : (Calls{"KillTimer", "CloseHandle"}));
        EXPECT_EQ(posix::OpenHandles(), handles);
    }
}

}  // namespace
}  // namespace velm
