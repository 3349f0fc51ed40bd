#include <gtest/gtest.h>

#include <string>

#include <windows.h>

#include "velm/AbortMessage.h"
#include "velm/LocalMachineTime.h"
#include "velm/MemoryInfo.h"
#include "velm/Scheduling.h"

namespace velm {
namespace {

TEST(MemoryInfo, TakesEveryOrderOfCalls) {
    MemoryInfo info;
    info.Check("before");
    info.Finalize();
    EXPECT_EQ(info.Initialize(nullptr), 0U);
    info.Check(nullptr);
    MemoryInfo copy(info);
    info.Finalize();
    info.Finalize();
    info.Check("after");
    copy.Check("the copy has a handle of its own");
    copy = info;
    EXPECT_EQ(MemoryInfo::GetInstance(), MemoryInfo::GetInstance());
}

TEST(AbortMessage, AMessageOfAnyLengthReturns) {
    const std::string text(10'000, 'x');
    AbortMessage("%s", text.c_str());
    AbortMessage(text.c_str());
    AbortMessage("%d %s %5.2f", 1, "two", 3.0);
    AbortMessage("");
    AbortMessage(nullptr);
}

TEST(LocalMachineTime, RunsInMilliseconds) {
    const unsigned long long before = GetLocalMachineTime();
    Sleep(50);
    const unsigned long long elapsed = GetLocalMachineTime() - before;
    EXPECT_GE(elapsed, 49U);
    EXPECT_LT(elapsed, 5000U);
}

TEST(SchedulingProcess, RaisesThePriorityClass) {
    EXPECT_TRUE(SchedulingProcess::SetPriorityHigh());
    EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), static_cast<DWORD>(HIGH_PRIORITY_CLASS));
    SetPriorityClass(GetCurrentProcess(), NORMAL_PRIORITY_CLASS);
}

TEST(SchedulingThread, RevertsOnce) {
    SchedulingThread thread;
    EXPECT_FALSE(thread.EndThreadPriority());
    ASSERT_TRUE(thread.StartThreadPriorityHigh());
    SchedulingThread copy(thread);
    copy = thread;
    EXPECT_FALSE(copy.EndThreadPriority());
    EXPECT_TRUE(thread.EndThreadPriority());
    EXPECT_FALSE(thread.EndThreadPriority());
}

}  // namespace
}  // namespace velm
