/// @file
/// How long a thread spins before it sleeps.
///
/// A thread that spins for as long as its wake-up would take, and only then sleeps, loses at most twice the
/// time it would lose if it knew in advance how long it has to wait. Spinning that long also stops two
/// threads from alternately waking each other: the spinning one is still awake when the other one arrives.
///
/// Times are read from the processor's time stamp counter, in some 10 ns and without a system call. Its rate
/// is unknown here, but durations are only compared with one another. On processors older than about 2009,
/// counters may differ between cores or change their rate, so a duration may be wrong, even negative. It is
/// clamped to a useful range, so such an error only costs time.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>

namespace velm {

/// A point in time or a duration, in ticks of the time stamp counter.
using Ticks = unsigned long long;

/// Learns how long waking a thread takes. All accesses are relaxed: a lost update does no harm.
/// Threads: any.
class WakeTime {
public:
    /// 130 microseconds at 2 GHz, 50 at 5 GHz. A wake-up that takes longer is waiting for a free processor.
    static constexpr Ticks kLongest = 1U << 18;

    /// A moving average over about 8 wake-ups.
    Ticks Get() const { return m_ticks.load(std::memory_order_relaxed); }

    /// Records a wake-up.
    /// @param posted  when the semaphore was posted
    /// @param awake  when the woken thread ran
    void Learn(Ticks posted, Ticks awake) {
        const auto took = static_cast<long long>(awake - posted);
        const auto known = static_cast<long long>(Get());
        const long long change = std::clamp(took, 0LL, static_cast<long long>(kLongest)) - known;
        m_ticks.store(static_cast<Ticks>(known + change / 8), std::memory_order_relaxed);
    }

private:
    std::atomic<Ticks> m_ticks{1U << 15};
};

/// Decides which waits spin. Spinning does not pay while all waits are long, or if the awaited thread needs
/// the same processor. So after kPatience waits in a row have ended in sleep, waits spin less and less often.
/// All accesses are relaxed: a lost update does no harm.
/// Threads: any.
class SpinTrials {
public:
    bool IsDue() const {
        const unsigned int failures = m_failures.load(std::memory_order_relaxed);
        return failures < kPatience || std::has_single_bit(failures) || failures % kRarely == 0;
    }

    void Succeed() { m_failures.store(0, std::memory_order_relaxed); }

    /// To be called whenever a thread sleeps, even if it did not spin.
    void Fail() {
        m_failures.store(m_failures.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

private:
    static constexpr unsigned int kPatience = 8;
    static constexpr unsigned int kRarely = 256;

    std::atomic<unsigned int> m_failures{0};
};

}  // namespace velm
