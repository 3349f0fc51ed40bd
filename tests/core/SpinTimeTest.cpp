#include "../../core/src/SpinTime.h"

#include <gtest/gtest.h>

namespace velm::spin_time_test {

constexpr Ticks kMicrosecond = 2'000;

TEST(WakeTime, AveragesWakeUpsWithinItsLimits) {
    const struct {
        const char* name;
        Ticks posted, awake, learned;
    } cases[] = {
        {"2 us", 5'000, 5'000 + 2 * kMicrosecond, 2 * kMicrosecond},
        {"40 us", 5'000, 5'000 + 40 * kMicrosecond, 40 * kMicrosecond},
        {"10 us, while the counter overflows", Ticks(0) - 1, 10 * kMicrosecond - 1, 10 * kMicrosecond},
        {"a thread that was suspended", 0, 1'000'000 * kMicrosecond, WakeTime::kLongest},
        {"a counter that lags behind", 9'000, 5'000, 0},
    };
    WakeTime time;
    for (const auto& [name, posted, awake, learned] : cases) {
        SCOPED_TRACE(name);
        const Ticks before = time.Get();
        time.Learn(posted, awake);
        EXPECT_NEAR(double(time.Get()), double(before), WakeTime::kLongest / 8.0)
            << "changed too much after one wake-up";
        for (int i = 0; i < 80; ++i) {
            time.Learn(posted, awake);
        }
        EXPECT_NEAR(double(time.Get()), double(learned), kMicrosecond / 100.0);
    }
}

TEST(SpinTrials, BackOffButNeverStopAndRecover) {
    SpinTrials trials;
    for (int round = 0; round < 2; ++round) {
        int due = 0;
        int sinceDue = 0;
        int longest = 0;
        for (int wait = 0; wait < 100'000; ++wait, trials.Fail()) {
            EXPECT_TRUE(trials.IsDue() || wait >= 8) << wait << ": gave up early";
            sinceDue = trials.IsDue() ? 0 : sinceDue + 1;
            longest = std::max(longest, sinceDue);
            due += trials.IsDue();
        }
        EXPECT_LE(due, 500);
        EXPECT_LT(longest, 256);
        trials.Succeed();
    }
}

}  // namespace velm::spin_time_test
