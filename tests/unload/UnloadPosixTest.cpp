#include <windows.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "Library.h"
#include "MessageLoop.h"
#include "velm/posix/Control.h"

namespace velm {
namespace {

using namespace test;

// The watchdog ends with KillTimer, the memory report with CloseHandle. A library that cannot be spared the
// notices of threads still loads.
TEST(UnloadPosix, SingletonsEndInTheReverseOrderOfTheirCreation) {
    const UniqueWindow window = MakeWindow();
    const unsigned int handles = posix::OpenHandles();
    for (const bool watchdogFirst : {true, false}) {
        SCOPED_TRACE(watchdogFirst);
        posix::FailCall("DisableThreadLibraryCalls", ERROR_GEN_FAILURE);
        posix::StartRecording();
        WatchdogChecker checker;
        const Library library;
        EXPECT_EQ(posix::RecordedCalls().back(), "DisableThreadLibraryCalls");
        for (const bool watchdog : {watchdogFirst, !watchdogFirst}) {
            watchdog ? library.StartWatchdog(window.get(), &checker) : library.OpenMemoryInfo();
        }
        EXPECT_TRUE(library.Free());
        auto calls = posix::RecordedCalls();
        posix::Reset();
        std::erase_if(calls, [](const auto& call) {
            return call != "DisableThreadLibraryCalls" && call != "KillTimer" && call != "CloseHandle";
        });
        const char* const ends[] = {"CloseHandle", "KillTimer"};
        EXPECT_EQ(calls, (std::vector<std::string>{"DisableThreadLibraryCalls", ends[!watchdogFirst],
                                                   ends[watchdogFirst]}));
        EXPECT_EQ(posix::OpenHandles(), handles);
    }
}

}  // namespace
}  // namespace velm
