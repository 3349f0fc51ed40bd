/// @file
/// How long a thread spins before it sleeps.
///
/// A thread that spins for as long as its wake-up would take, and then sleeps, pays at most twice what it
/// would pay if it knew in advance how long it has to wait. It also gets two threads that keep waking each
/// other back in step: the one spins until the other is awake.
///
/// Times come from the processor's time stamp counter, which takes some 10 ns to read and no system call. Its
/// rate is unknown here, but durations are only compared with durations. On processors before 2009, whose
/// counters may differ or change their rate, a duration may be wrong, even negative. It is limited to between
/// 0 and the longest that is useful, so that costs time at worst.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>

namespace velm {

/// A point in time or a duration, in ticks of the time stamp counter.
using Ticks = unsigned long long;

/// Learns how long it takes to wake a thread. All accesses are relaxed: a lost update does no harm.
/// Threads: any.
class WakeTime {
public:
    /// 50 to 130 microseconds at 5 to 2 GHz. A thread that takes longer is waiting for a processor.
    static constexpr Ticks kLongest = 1U << 18;

    /// A moving average over some 8 wake-ups.
    Ticks Get() const { return m_ticks.load(std::memory_order_relaxed); }

    /// Records a wake-up: when the thread was posted, and when it was awake.
    void Learn(Ticks posted, Ticks awake) {
        const auto took = static_cast<long long>(awake - posted);
        const auto known = static_cast<long long>(Get());
        const long long change = std::clamp(took, 0LL, static_cast<long long>(kLongest)) - known;
        m_ticks.store(static_cast<Ticks>(known + change / 8), std::memory_order_relaxed);
    }

private:
    std::atomic<Ticks> m_ticks{1U << 15};
};

/// Decides which waits spin. Spinning does not pay while all waits are long, nor if the awaited thread needs
/// the same processor. So after kPatience waits in a row that ended in sleep, ever fewer waits try again.
/// All accesses are relaxed: a lost update does no harm.
/// Threads: any.
class SpinTrials {
public:
    bool IsDue() const {
        const unsigned int failures = m_failures.load(std::memory_order_relaxed);
        return failures < kPatience || std::has_single_bit(failures) || failures % kRarely == 0;
    }

    void Succeed() { m_failures.store(0, std::memory_order_relaxed); }

    /// The thread sleeps, whether or not it has spun.
    void Fail() {
        m_failures.store(m_failures.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

private:
    static constexpr unsigned int kPatience = 8;
    static constexpr unsigned int kRarely = 256;

    std::atomic<unsigned int> m_failures{0};
};

}  // namespace velm
