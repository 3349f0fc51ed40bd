#include <windows.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "MessageLoop.h"
#include "velm/LocalMachineTime.h"
#include "velm/MemoryInfo.h"
#include "velm/posix/Control.h"
#include "velm/Scheduling.h"
#include "velm/Watchdog.h"

namespace velm {
namespace {

using Calls = std::vector<std::string>;

class ThreadPosixTest : public testing::Test {
protected:
    void TearDown() override { posix::Reset(); }
};

using SchedulingPosixTest = ThreadPosixTest;
using WatchdogPosixTest = ThreadPosixTest;
using MemoryInfoPosixTest = ThreadPosixTest;
using LocalMachineTimePosixTest = ThreadPosixTest;

TEST_F(SchedulingPosixTest, AsksForCritical) {
    posix::StartRecording();
    SchedulingThread thread;
    ASSERT_TRUE(thread.StartThreadPriorityHigh());
    ASSERT_EQ(posix::ShownCalls().size(), 1U);
    EXPECT_EQ(posix::ShownCalls()[0].numbers, std::vector<long long>{2});
}

TEST_F(WatchdogPosixTest, ARefusedTimerLeavesTheEarlierOne) {
    const UniqueWindow window = MakeWindow();
    WatchdogChecker checker;
    Watchdog* const watchdog = Watchdog::GetInstance();
    watchdog->SetElapse(20);
    ASSERT_EQ(watchdog->Start(window.get(), &checker), 0U);
    posix::FailCall("SetTimer", ERROR_NOT_ENOUGH_MEMORY, 0, 1);
    EXPECT_EQ(watchdog->Start(window.get(), &checker), VELM_ERROR_UTIL_UNKNOWN);
    EXPECT_GE(RunLoop(window.get(), 200).ticks, 1);
    watchdog->Stop();
    EXPECT_EQ(RunLoop(window.get(), 50).ticks, 0);
}

TEST_F(MemoryInfoPosixTest, ClosesEveryHandleOnce) {
    const unsigned int before = posix::OpenHandles();
    {
        MemoryInfo info;
        posix::StartRecording();
        info.Check("");  // not yet
        EXPECT_EQ(info.Initialize(""), 0U);
        info.Check("");
        EXPECT_EQ(posix::RecordedCalls(), (Calls{"OpenProcess", "GetProcessMemoryInfo"}));
        MemoryInfo copy(info);
        EXPECT_EQ(posix::OpenHandles(), before + 2);
        MemoryInfo& same = copy;
        copy = same;
        copy = MemoryInfo();
        EXPECT_EQ(posix::OpenHandles(), before + 1);
    }
    EXPECT_EQ(posix::OpenHandles(), before);
}

TEST_F(LocalMachineTimePosixTest, NoReadingIsTooLargeToConvert) {
    struct Case {
        unsigned long long count;
        unsigned long long frequency;
        unsigned long long milliseconds;
    };
    constexpr Case kCases[] = {
        {25'000'001, 10'000'000, 2500},
        {10, 3, 3333},
        {10, 0, 0},
        {0, 1'000'000'000, 0},
        {999'999, 1'000'000, 999},
        // Multiplied by 1000 before the division, these would not fit 64 bits.
        {0x7FFFFFFFFFFFFFFF, 10'000'000, 922'337'203'685'477},
        {0x7FFFFFFFFFFFFFFF, 1'000'000'000, 9'223'372'036'854},
        // The reading -1, and the same in units that leave it whole.
        {0xFFFFFFFFFFFFFFFF, 10'000'000, 1'844'674'407'370'955},
        {0xFFFFFFFFFFFFFFFF, 1'000, 0xFFFFFFFFFFFFFFFF},
    };
    for (const Case& test : kCases) {
        SCOPED_TRACE(testing::Message() << test.count << " / " << test.frequency);
        posix::SetPerformanceCounter(test.count, test.frequency);
        EXPECT_EQ(GetLocalMachineTime(), test.milliseconds);
    }
}

}  // namespace
}  // namespace velm
