#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "MessageLoop.h"
#include "velm/LocalMachineTime.h"
#include "velm/MemoryInfo.h"
#include "velm/posix/Control.h"
#include "velm/Scheduling.h"
#include "velm/Watchdog.h"

namespace velm::thread_posix_test {

using namespace test;

class ThreadPosixTest : public testing::Test {
protected:
    void TearDown() override { posix::Reset(); }
};

TEST_F(ThreadPosixTest, SchedulingSetsAndRevertsCritical) {
    posix::StartRecording();
    SchedulingThread thread;
    ASSERT_TRUE(thread.StartThreadPriorityHigh());
    ASSERT_EQ(posix::ShownCalls().size(), 1U);
    EXPECT_EQ(posix::ShownCalls()[0].numbers, std::vector<long long>{2});
    SchedulingThread copy(thread);
    copy = thread;
    EXPECT_FALSE(copy.EndThreadPriority());
    EXPECT_TRUE(thread.EndThreadPriority());
    posix::FailCall("AvSetMmThreadPriority", ERROR_ACCESS_DENIED);
    EXPECT_FALSE(thread.StartThreadPriorityHigh());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED)) << "the cause, not a later error";
    EXPECT_FALSE(thread.EndThreadPriority()) << "already reverted";
    posix::StartRecording();
    EXPECT_TRUE(SchedulingThread().StartThreadPriorityHigh());
    EXPECT_EQ(posix::RecordedCalls().back(), "AvRevertMmThreadCharacteristics");
}

TEST_F(ThreadPosixTest, FailedTimerKeepsTheEarlierOne) {
    const UniqueWindow window = MakeWindow();
    WatchdogChecker checker;
    Watchdog* const watchdog = Watchdog::GetInstance();
    watchdog->SetElapse(20);
    ASSERT_EQ(watchdog->Start(window.get(), &checker), 0U);
    posix::FailCall("SetTimer", ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(watchdog->Start(window.get(), &checker), VELM_ERROR_UTIL_UNKNOWN);
    EXPECT_GE(RunLoop(window.get(), 200).ticks, 1);
    watchdog->Stop();
}

TEST_F(ThreadPosixTest, MemoryInfoClosesHandlesOnce) {
    const unsigned int before = posix::OpenHandles();
    {
        MemoryInfo info;
        posix::StartRecording();
        info.Check("not yet");
        EXPECT_EQ(info.Initialize(""), 0U);
        info.Check("");
        info.Finalize();
        info.Finalize();
        info.Check("no more");
        EXPECT_EQ(posix::RecordedCalls(),
                  (std::vector<std::string>{"OpenProcess", "GetProcessMemoryInfo", "CloseHandle"}));
        EXPECT_EQ(info.Initialize(""), 0U);
        MemoryInfo copy(info);
        MemoryInfo& same = copy;
        copy = same;
        EXPECT_EQ(posix::OpenHandles(), before + 2);
        copy = MemoryInfo();
        EXPECT_EQ(posix::OpenHandles(), before + 1);
    }
    EXPECT_EQ(posix::OpenHandles(), before);
}

TEST_F(ThreadPosixTest, ConvertsLargeClockReadings) {
    constexpr unsigned long long kCases[][3] = {
        {25'000'001, 10'000'000, 2500},
        // Times 1000 these overflow 64 bits; the second is the reading -1.
        {0x7FFFFFFFFFFFFFFF, 1'000'000'000, 9'223'372'036'854},
        {0xFFFFFFFFFFFFFFFF, 1'000, 0xFFFFFFFFFFFFFFFF},
    };
    for (const auto& [count, frequency, milliseconds] : kCases) {
        posix::SetPerformanceCounter(count, frequency);
        EXPECT_EQ(GetLocalMachineTime(), milliseconds) << count << " / " << frequency;
        for (const char* const call : {"QueryPerformanceCounter", "QueryPerformanceFrequency"}) {
            posix::FailCall(call, ERROR_GEN_FAILURE);
            EXPECT_EQ(GetLocalMachineTime(), 0U) << call;
        }
    }
}

}  // namespace velm::thread_posix_test
