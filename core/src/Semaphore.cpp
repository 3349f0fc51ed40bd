#include "velm/core/Semaphore.h"

#include <windows.h>

#if defined(_MSC_VER)
#include <intrin.h>
#else
#include <x86intrin.h>
#endif

#include <algorithm>
#include <atomic>
#include <bit>
#include <new>

#include "SpinTime.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/ProcessEnd.h"

// Threads sleep in WaitOnAddress while the low half of `counts` is 0. No wake-up is lost:
// - A sleeper adds itself to the high half before it checks the low half for the last time, and Post changes
//   the low half and reads the high half in one operation. So either the sleeper sees the new count or Post
//   sees the sleeper, and WaitOnAddress returns at once if the low half is no longer 0.
// - The closing bit keeps the low half nonzero, so no thread falls asleep once it is set.
//
// No thread touches freed memory: Post stores its time before its one operation on `counts`, and afterwards
// uses only the address, which the wake calls do not dereference; a waiter holds a reference from before it
// spins until it leaves.

namespace velm {

struct SemaphoreState {
    SemaphoreState(unsigned int initial, unsigned int max) : counts(initial), maximum(max) {}

    // The padding keeps other heap blocks off the counts' 64-byte cache line. Heap blocks are aligned to 16.
    unsigned char padBefore[64 - 16] = {};
    // Low half: the count and the closing bit. High half: the number of sleeping threads. Both in one word,
    // so that Post cannot miss a thread that is falling asleep. Post's release pairs with the acquire of a
    // take; every change is a read-modify-write, so a take is ordered after all earlier posts. Adding a
    // sleeper, reading and closing are relaxed: they publish nothing but this word, and all threads see its
    // changes in the same order.
    std::atomic<unsigned long long> counts;
    // One for the semaphore, one for each thread in WaitSlowly, and the closing bit. A leaving thread's
    // release pairs with the acquire of whoever frees the state, and with that of the waiting destructor.
    // Adding a reference is relaxed: the semaphore's own reference keeps the state alive meanwhile.
    std::atomic<unsigned int> references{1};
    const unsigned int maximum;
    // The time of the last post that found sleepers and a count of 0. Relaxed: a woken thread may read the
    // time of another post and learn a wrong wake-up time, which does no harm.
    std::atomic<Ticks> posted{0};
    SpinTrials trials;
    unsigned char padAfter[64 - 16 - sizeof posted - sizeof trials] = {};
};

namespace {

using State = unsigned long long;

constexpr unsigned int kClosing = 0x80000000U;
constexpr unsigned int kMaxCount = kClosing - 1;
constexpr State kOneSleeper = State{1} << 32;
constexpr unsigned int kLeaveMilliseconds = 200;

// Reading the clock takes about as long as one pause, some 10 to 50 ns.
constexpr unsigned int kPausesPerClockRead = 16;

// Shared by all semaphores: a thread that spins on one often waits for a thread being woken on another.
constinit WakeTime g_wakeTime;

static_assert(std::endian::native == std::endian::little, "the count is the first half of the state");

constexpr unsigned int LowHalf(State state) {
    return static_cast<unsigned int>(state);
}

constexpr bool IsClosing(State state) {
    return (LowHalf(state) & kClosing) != 0;
}

constexpr bool CanTake(State state) {
    return LowHalf(state) != 0 && !IsClosing(state);
}

constexpr unsigned int Sleepers(State state) {
    return static_cast<unsigned int>(state >> 32);
}

bool TryTakeFrom(SemaphoreState& semaphore) {
    State counts = semaphore.counts.load(std::memory_order_relaxed);
    while (CanTake(counts)) {
        if (semaphore.counts.compare_exchange_weak(counts, counts - 1, std::memory_order_acquire,
                                                   std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

bool TryTakeBetweenPauses(SemaphoreState& semaphore) {
    for (unsigned int pause = 0; pause < kPausesPerClockRead; ++pause) {
        if (TryTakeFrom(semaphore)) {
            return true;
        }
        YieldProcessor();
    }
    return false;
}

/// Spins. Reads the clock only if the first pauses are not enough.
bool TryTakeFor(SemaphoreState& semaphore, Ticks duration) {
    if (TryTakeBetweenPauses(semaphore)) {
        return true;
    }
    const Ticks began = __rdtsc();
    do {
        if (TryTakeBetweenPauses(semaphore)) {
            return true;
        }
    } while (__rdtsc() - began < duration);
    return false;
}

ErrorCode SleepUntilTaken(SemaphoreState& semaphore) {
    State counts = semaphore.counts.fetch_add(kOneSleeper, std::memory_order_relaxed) + kOneSleeper;
    for (;;) {
        while (CanTake(counts)) {
            if (semaphore.counts.compare_exchange_weak(
                    counts, counts - kOneSleeper - 1, std::memory_order_acquire, std::memory_order_relaxed)) {
                return 0;
            }
        }
        if (IsClosing(counts) || IsProcessEnding()) {
            return VELM_ERROR_CORE_ILLEGAL_CALL;
        }
        unsigned int nothing = 0;
        WaitOnAddress(&semaphore.counts, &nothing, sizeof nothing, INFINITE);
        counts = semaphore.counts.load(std::memory_order_relaxed);
        if (CanTake(counts)) {
            g_wakeTime.Learn(semaphore.posted.load(std::memory_order_relaxed), __rdtsc());
        }
    }
}

ErrorCode SpinThenSleep(SemaphoreState& semaphore) {
    if (semaphore.trials.IsDue() && TryTakeFor(semaphore, g_wakeTime.Get())) {
        semaphore.trials.Succeed();
        return 0;
    }
    semaphore.trials.Fail();
    return SleepUntilTaken(semaphore);
}

/// Drops a reference. The last one frees the state; the last waiter wakes a waiting destructor.
void Release(SemaphoreState* semaphore) {
    void* const address = &semaphore->references;
    const unsigned int before = semaphore->references.fetch_sub(1, std::memory_order_acq_rel);
    if (before == (kClosing | 1)) {
        delete semaphore;
    } else if (before == (kClosing | 2)) {
        WakeByAddressAll(address);
    }
}

ErrorCode WaitSlowly(SemaphoreState* semaphore) {
    semaphore->references.fetch_add(1, std::memory_order_relaxed);
    const ErrorCode result = SpinThenSleep(*semaphore);
    Release(semaphore);
    return result;
}

}  // namespace

Semaphore::Semaphore(unsigned int initial, unsigned int maximum)
    : m_state(new (std::nothrow)
                  SemaphoreState(std::min({initial, maximum, kMaxCount}), std::min(maximum, kMaxCount))) {}

Semaphore::~Semaphore() {
    if (m_state == nullptr) {
        return;
    }
    unsigned int references = m_state->references.fetch_or(kClosing, std::memory_order_acq_rel) | kClosing;
    if (references != (kClosing | 1)) {
        if (IsProcessEnding()) {
            return;  // the waiters are dead, and waking them would touch what they left in the system
        }
        m_state->counts.fetch_or(kClosing, std::memory_order_relaxed);
        WakeByAddressAll(&m_state->counts);
        do {
            references = m_state->references.load(std::memory_order_acquire);
        } while (references != (kClosing | 1) &&
                 WaitOnAddress(&m_state->references, &references, sizeof references, kLeaveMilliseconds));
    }
    Release(m_state);
}

ErrorCode Semaphore::Wait() {
    if (m_state == nullptr) {
        return VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    }
    return TryTakeFrom(*m_state) ? ErrorCode(0) : WaitSlowly(m_state);
}

bool Semaphore::TryTake() {
    return m_state != nullptr && TryTakeFrom(*m_state);
}

ErrorCode Semaphore::Post(unsigned int count) {
    if (m_state == nullptr) {
        return VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    }
    void* const address = &m_state->counts;
    State counts = m_state->counts.load(std::memory_order_relaxed);
    do {
        if (IsClosing(counts)) {
            return VELM_ERROR_CORE_ILLEGAL_CALL;
        }
        if (count > m_state->maximum - LowHalf(counts)) {
            return VELM_ERROR_CORE_LIMIT_EXCEEDED;
        }
        if (Sleepers(counts) != 0 && LowHalf(counts) == 0) {
            m_state->posted.store(__rdtsc(), std::memory_order_relaxed);
        }
    } while (!m_state->counts.compare_exchange_weak(counts, counts + count, std::memory_order_release,
                                                    std::memory_order_relaxed));
    if (Sleepers(counts) <= count) {
        if (Sleepers(counts) != 0) {
            WakeByAddressAll(address);
        }
        return 0;
    }
    for (; count != 0; --count) {
        WakeByAddressSingle(address);
    }
    return 0;
}

}  // namespace velm
