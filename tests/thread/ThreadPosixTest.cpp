#include <windows.h>
#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "MessageLoop.h"
#include "velm/LocalMachineTime.h"
#include "velm/MemoryInfo.h"
#include "velm/posix/Control.h"
#include "velm/Scheduling.h"
#include "velm/ThreadCaller.h"
#include "velm/Watchdog.h"

namespace {

thread_local bool t_failNew = false;

}  // namespace

// The library's own allocations that may fail come here too.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return t_failNew ? nullptr : ::operator new(size);
    } catch (...) {
        return nullptr;
    }
}

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

int Return(void*) {
    return 0;
}

TEST_F(ThreadPosixTest, AThreadThatTheSystemRefusesIsNotJoined) {
    posix::FailCall("_beginthreadex", ERROR_NOT_ENOUGH_MEMORY);
    ThreadCaller caller;
    caller.Start(&Return, nullptr, "refused");
    EXPECT_EQ(caller.GetState(), 1);
    posix::StartRecording();
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 1);
    EXPECT_EQ(posix::RecordedCalls(), Calls());
}

TEST_F(ThreadPosixTest, AFailedJoinIsReportedAndTheThreadStillReleased) {
    const unsigned int handles = posix::OpenHandles();
    ThreadCaller caller;
    caller.Start(&Return, nullptr, "joined late");
    posix::FailCall("WaitForSingleObject", ERROR_GEN_FAILURE);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), -1);
    EXPECT_EQ(posix::OpenHandles(), handles);
}

TEST_F(ThreadPosixTest, NoMemoryForAThreadKeepsTheEarlierOne) {
    const unsigned int handles = posix::OpenHandles();
    ThreadCaller caller;
    caller.Start(&Return, nullptr, "earlier");
    t_failNew = true;
    caller.Start(&Return, nullptr, "no memory");
    t_failNew = false;
    EXPECT_EQ(caller.GetState(), 3);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 3);
    EXPECT_EQ(posix::OpenHandles(), handles);
}

TEST_F(SchedulingPosixTest, MakesTheCallsInOrder) {
    struct Case {
        const char* failing;
        bool started;
        Calls calls;
    };
    const char* const set = "AvSetMmThreadCharacteristicsW";
    const char* const raise = "AvSetMmThreadPriority";
    const char* const revert = "AvRevertMmThreadCharacteristics";
    for (const Case& test : {Case{"none", true, {set, raise, revert}}, Case{set, false, {set}},
                             Case{raise, false, {set, raise, revert}}}) {
        SCOPED_TRACE(test.failing);
        const unsigned int handles = posix::OpenHandles();
        posix::FailCall(test.failing, ERROR_ACCESS_DENIED);
        posix::StartRecording();
        {
            SchedulingThread thread;
            SetLastError(0);
            EXPECT_EQ(thread.StartThreadPriorityHigh(), test.started);
            EXPECT_EQ(GetLastError(), test.started ? 0U : ERROR_ACCESS_DENIED);
        }
        EXPECT_EQ(posix::RecordedCalls(), test.calls);
        EXPECT_EQ(posix::OpenHandles(), handles);
    }
}

TEST_F(SchedulingPosixTest, AsksForCriticalAndKeepsWhatItCannotRevert) {
    posix::StartRecording();
    SchedulingThread thread;
    ASSERT_TRUE(thread.StartThreadPriorityHigh());
    ASSERT_EQ(posix::ShownCalls().size(), 1U);
    EXPECT_EQ(posix::ShownCalls()[0].numbers, std::vector<long long>{2});
    posix::FailCall("AvRevertMmThreadCharacteristics", ERROR_ACCESS_DENIED);
    EXPECT_FALSE(thread.EndThreadPriority());
    EXPECT_TRUE(thread.EndThreadPriority());
}

TEST_F(SchedulingPosixTest, ARefusedPriorityClassIsReported) {
    posix::FailCall("SetPriorityClass", ERROR_ACCESS_DENIED);
    EXPECT_FALSE(SchedulingProcess::SetPriorityHigh());
}

TEST_F(WatchdogPosixTest, ARefusedTimerLeavesItAsItWas) {
    const UniqueWindow window = MakeWindow();
    WatchdogChecker checker;
    Watchdog* const watchdog = Watchdog::GetInstance();
    watchdog->SetElapse(20);
    posix::FailCall("SetTimer", ERROR_NOT_ENOUGH_MEMORY, 0, 1);
    EXPECT_EQ(watchdog->Start(window.get(), &checker), VELM_ERROR_UTIL_UNKNOWN);
    EXPECT_EQ(RunLoop(window.get(), 50).ticks, 0);

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
        posix::FailCall("OpenProcess", ERROR_ACCESS_DENIED);
        EXPECT_EQ(info.Initialize(""), 0xFFFFFFFFU);
        posix::StartRecording();
        info.Check("");
        EXPECT_EQ(posix::RecordedCalls(), Calls());
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
