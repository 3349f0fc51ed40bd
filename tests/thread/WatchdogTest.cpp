#include "velm/Watchdog.h"

#include <gtest/gtest.h>

#include "MessageLoop.h"

namespace velm {
namespace {

constexpr unsigned int kPeriod = 20;  // in milliseconds

/// Alive for a number of ticks.
class Checker : public WatchdogChecker {
public:
    explicit Checker(int ticks = 1'000'000) : m_ticks(ticks) {}
    bool IsActive() override { return ++m_asked <= m_ticks; }
    int Asked() const { return m_asked; }

private:
    int m_ticks;
    int m_asked = 0;
};

class WatchdogTest : public testing::Test {
protected:
    void SetUp() override { m_watchdog->SetElapse(kPeriod); }
    void TearDown() override {
        m_watchdog->Stop();
        m_watchdog->SetExitCode(16);
    }

    Watchdog* const m_watchdog = Watchdog::GetInstance();
    const UniqueWindow m_window = MakeWindow();
};

TEST_F(WatchdogTest, RefusesNullAndStaysIdle) {
    Checker dead(0);
    EXPECT_TRUE(m_watchdog->IsActive());
    EXPECT_EQ(m_watchdog->GetExitCode(), 16);
    EXPECT_EQ(m_watchdog->Start(nullptr, &dead), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(m_watchdog->Start(m_window.get(), nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_TRUE(m_watchdog->IsActive());
    EXPECT_EQ(m_watchdog->Stop(), 0U);
    EXPECT_EQ(RunLoop(m_window.get(), 3 * kPeriod).ticks, 0);
}

TEST_F(WatchdogTest, ALivingActivityIsNeverEnded) {
    Checker alive;
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &alive), 0U);
    const LoopResult result = RunLoop(m_window.get(), 15 * kPeriod);
    EXPECT_FALSE(result.quit);
    EXPECT_GE(result.ticks, 10);
    EXPECT_EQ(alive.Asked(), result.ticks);
    EXPECT_TRUE(m_watchdog->IsActive());
}

TEST_F(WatchdogTest, AStallEndsTheLoopWithTheExitCode) {
    for (const int exitCode : {16, 0, -3, 259}) {
        SCOPED_TRACE(exitCode);
        m_watchdog->SetExitCode(exitCode);
        Checker stalls(2);
        ASSERT_EQ(m_watchdog->Start(m_window.get(), &stalls), 0U);
        const LoopResult result = RunLoop(m_window.get(), 1000 * kPeriod);
        EXPECT_TRUE(result.quit);
        EXPECT_EQ(result.exitCode, exitCode);
        EXPECT_EQ(stalls.Asked(), 3);
        EXPECT_FALSE(m_watchdog->IsActive());
        m_watchdog->Stop();
    }
}

// The timer is not ended by the quit message: a loop that goes on is told again.
TEST_F(WatchdogTest, EveryTickOfAStallPostsAQuitMessage) {
    Checker dead(0);
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &dead), 0U);
    EXPECT_TRUE(RunLoop(m_window.get(), 1000 * kPeriod).quit);
    EXPECT_TRUE(RunLoop(m_window.get(), 1000 * kPeriod).quit);
}

TEST_F(WatchdogTest, NotOneTickComesAfterStop) {
    Checker dead(0);
    for (int starts = 1; starts <= 2; ++starts) {
        for (int i = 0; i < starts; ++i) {
            ASSERT_EQ(m_watchdog->Start(m_window.get(), &dead), 0U);
        }
        m_watchdog->Stop();
        const LoopResult result = RunLoop(m_window.get(), 5 * kPeriod);
        EXPECT_EQ(result.ticks, 0);
        EXPECT_FALSE(result.quit);
        EXPECT_EQ(dead.Asked(), 0);
        EXPECT_TRUE(m_watchdog->IsActive());
    }
}

// The loop holds a tick while the watchdog is stopped, then delivers it.
TEST_F(WatchdogTest, ATickInHandDoesNothingAfterStop) {
    Checker dead(0);
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &dead), 0U);
    MSG message{};
    ASSERT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
    ASSERT_EQ(message.message, static_cast<UINT>(WM_TIMER));
    m_watchdog->Stop();
    DispatchMessageW(&message);
    EXPECT_EQ(dead.Asked(), 0);
    EXPECT_FALSE(RunLoop(m_window.get(), 2 * kPeriod).quit);
}

TEST_F(WatchdogTest, AStartOnAnotherWindowLeavesNoTimerBehind) {
    const UniqueWindow other = MakeWindow();
    Checker first;
    Checker second;
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &first), 0U);
    ASSERT_EQ(m_watchdog->Start(other.get(), &second), 0U);
    EXPECT_GE(RunLoop(m_window.get(), 5 * kPeriod).ticks, 1);
    EXPECT_EQ(first.Asked(), 0);
    m_watchdog->Stop();
    EXPECT_EQ(RunLoop(m_window.get(), 5 * kPeriod).ticks, 0);
}

// What the system calls the watchdog's timer may be the name of another one.
TEST_F(WatchdogTest, StopSparesTheClientsOwnTimers) {
    for (UINT_PTR id = 1; id <= 3; ++id) {
        SetTimer(m_window.get(), id, kPeriod, nullptr);
    }
    Checker alive;
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &alive), 0U);
    m_watchdog->Stop();
    for (UINT_PTR id = 1; id <= 3; ++id) {
        EXPECT_TRUE(KillTimer(m_window.get(), id)) << id;
    }
}

TEST_F(WatchdogTest, ANewPeriodWaitsForTheNextStart) {
    Checker alive;
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &alive), 0U);
    m_watchdog->SetElapse(1'000'000);
    EXPECT_GE(RunLoop(m_window.get(), 10 * kPeriod).ticks, 2);
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &alive), 0U);
    EXPECT_EQ(RunLoop(m_window.get(), 5 * kPeriod).ticks, 0);
}

}  // namespace
}  // namespace velm
