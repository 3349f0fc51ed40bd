#include "velm/Watchdog.h"

#include <gtest/gtest.h>

#include <string>

#include "MessageLoop.h"
#include "velm/AbortMessage.h"
#include "velm/Scheduling.h"

namespace velm::process_services_test {

using namespace test;

constexpr unsigned int kPeriod = 20;  // in milliseconds

/// Reports activity for a number of ticks.
struct Checker : WatchdogChecker {
    explicit Checker(int ticks = 1'000'000) : left(ticks) {}
    bool IsActive() override {
        ++asked;
        return left-- > 0;
    }
    int left;
    int asked = 0;
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

TEST_F(WatchdogTest, LastStartWinsAndActivityKeepsTheLoop) {
    const UniqueWindow other = MakeWindow();
    Checker first;
    Checker alive;
    EXPECT_EQ(m_watchdog->Start(nullptr, &alive), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(m_watchdog->Start(m_window.get(), nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_TRUE(m_watchdog->IsActive());
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &first), 0U);
    ASSERT_EQ(m_watchdog->Start(other.get(), &alive), 0U);
    m_watchdog->SetElapse(1'000'000);  // for the next start
    const LoopResult result = RunLoop(m_window.get(), 15 * kPeriod);
    EXPECT_FALSE(result.quit);
    EXPECT_GE(result.ticks, 2);
    EXPECT_EQ(first.asked, 0);
    EXPECT_EQ(alive.asked, result.ticks);
    EXPECT_TRUE(m_watchdog->IsActive());
    ASSERT_EQ(m_watchdog->Start(other.get(), &alive), 0U);
    EXPECT_EQ(RunLoop(m_window.get(), 5 * kPeriod).ticks, 0) << "ticks of either window's timer";
}

// The timer survives the quit message: a loop that goes on gets another one.
TEST_F(WatchdogTest, EveryTickOfAStallQuitsTheLoop) {
    EXPECT_EQ(m_watchdog->GetExitCode(), 16);
    m_watchdog->SetExitCode(-3);
    Checker stalls(2);
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &stalls), 0U);
    for (const int asked : {3, 4}) {
        const LoopResult result = RunLoop(m_window.get(), 1000 * kPeriod);
        EXPECT_TRUE(result.quit);
        EXPECT_EQ(result.exitCode, -3);
        EXPECT_EQ(stalls.asked, asked);
    }
    EXPECT_FALSE(m_watchdog->IsActive());
}

// The system may reuse the number of another timer for the watchdog's.
TEST_F(WatchdogTest, StopEndsTicksAndKeepsOtherTimers) {
    for (UINT_PTR id = 1; id <= 3; ++id) {
        SetTimer(m_window.get(), id, 1'000'000, nullptr);
    }
    Checker dead(0);
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &dead), 0U);
    ASSERT_EQ(m_watchdog->Start(m_window.get(), &dead), 0U);
    MSG tick{};  // received before the watchdog stops, dispatched after
    ASSERT_GT(GetMessageW(&tick, nullptr, 0, 0), 0);
    ASSERT_EQ(tick.message, static_cast<UINT>(WM_TIMER));
    m_watchdog->Stop();
    DispatchMessageW(&tick);
    const LoopResult result = RunLoop(m_window.get(), 5 * kPeriod);
    EXPECT_EQ(result.ticks, 0);
    EXPECT_FALSE(result.quit);
    EXPECT_EQ(dead.asked, 0);
    EXPECT_TRUE(m_watchdog->IsActive());
    for (UINT_PTR id = 1; id <= 3; ++id) {
        EXPECT_TRUE(KillTimer(m_window.get(), id)) << id;
    }
}

TEST(ProcessServices, SurvivesLongMessagesAndSetsPriority) {
    AbortMessage("%s", std::string(10'000, 'x').c_str());
    AbortMessage("%.99999999d", 5);
    AbortMessage(nullptr);
    EXPECT_TRUE(SchedulingProcess::SetPriorityHigh());
    EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), static_cast<DWORD>(HIGH_PRIORITY_CLASS));
    SetPriorityClass(GetCurrentProcess(), NORMAL_PRIORITY_CLASS);
}

}  // namespace velm::process_services_test
