#include "velm/core/Semaphore.h"

#include <windows.h>

#include <algorithm>
#include <bit>

#include "velm/core/CoreErrorCode.h"

// A thread that sleeps does so on the low half of m_state being 0, by WaitOnAddress. No wake-up is lost:
// - a sleeper adds itself to the high half before it looks at the low half a last time, and a post changes
//   the low half and reads the high half in one operation, so either the sleeper sees the new count or the
//   post sees the sleeper, and WaitOnAddress itself returns at once when the count is no longer 0;
// - the closing bit makes the low half differ from 0 for good, so no thread falls asleep after it is set.
//
// No thread touches freed memory: after its one operation on m_state a post uses the address only, which the
// wake calls never dereference; and the last operation of a waiter is to leave m_waiters, for which the
// destructor waits.

namespace velm {
namespace {

using State = unsigned long long;

constexpr unsigned int kClosing = 0x80000000U;
constexpr unsigned int kMostCount = kClosing - 1;
constexpr State kOneSleeper = State{1} << 32;

// Spinning pays when the thread that posts runs on another processor: for the time that waking a thread
// takes, some 10 microseconds, so that threads which have fallen asleep in turn catch up with each other.
// When both share a processor it only delays the other one. So a semaphore whose waits have ended in sleep
// for a while spins only now and then, to see whether it pays again.
constexpr unsigned int kSpins = 400;
constexpr unsigned int kFruitlessSpins = 8;
constexpr unsigned int kRetrySpins = 64;

constexpr unsigned int SpinsAfter(unsigned int fruitless) {
    return fruitless < kFruitlessSpins || fruitless % kRetrySpins == 0 ? kSpins : 1;
}

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

}  // namespace

Semaphore::Semaphore(unsigned int initial, unsigned int maximum)
    : m_padBefore{},
      m_state(std::min({initial, maximum, kMostCount})),
      m_waiters(0),
      m_maximum(std::min(maximum, kMostCount)),
      m_fruitlessSpins(0),
      m_padAfter{} {
    static_assert(sizeof m_padBefore == 64 - 16 && sizeof m_padAfter == 64 - 16 - sizeof m_fruitlessSpins,
                  "no neighbour in a line of 64 bytes, where heap blocks begin at multiples of 16");
}

Semaphore::~Semaphore() {
    m_waiters.fetch_or(kClosing, std::memory_order_acq_rel);
    m_state.fetch_or(kClosing, std::memory_order_acq_rel);
    WakeByAddressAll(CountAddress());
    for (;;) {
        unsigned int waiters = m_waiters.load(std::memory_order_acquire);
        if (waiters == kClosing) {
            return;
        }
        WaitOnAddress(&m_waiters, &waiters, sizeof waiters, INFINITE);
    }
}

ErrorCode Semaphore::Wait() {
    return TryTake() ? ErrorCode(0) : WaitSlowly();
}

ErrorCode Semaphore::Post(unsigned int count) {
    State state = m_state.load(std::memory_order_relaxed);
    do {
        if (IsClosing(state)) {
            return VELM_ERROR_CORE_ILLEGAL_CALL;
        }
        if (count > m_maximum - LowHalf(state)) {
            return VELM_ERROR_CORE_LIMIT_EXCEEDED;
        }
    } while (!m_state.compare_exchange_weak(state, state + count, std::memory_order_release,
                                            std::memory_order_relaxed));
    if (Sleepers(state) <= count) {
        if (Sleepers(state) != 0) {
            WakeByAddressAll(CountAddress());
        }
        return 0;
    }
    for (; count != 0; --count) {
        WakeByAddressSingle(CountAddress());
    }
    return 0;
}

bool Semaphore::TryTake() {
    State state = m_state.load(std::memory_order_relaxed);
    while (CanTake(state)) {
        if (m_state.compare_exchange_weak(state, state - 1, std::memory_order_acquire,
                                          std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

ErrorCode Semaphore::WaitSlowly() {
    m_waiters.fetch_add(1, std::memory_order_relaxed);
    const ErrorCode result = SpinThenSleep();
    void* const waiters = &m_waiters;
    if (m_waiters.fetch_sub(1, std::memory_order_release) == (kClosing | 1)) {
        WakeByAddressAll(waiters);
    }
    return result;
}

ErrorCode Semaphore::SpinThenSleep() {
    const unsigned int fruitless = m_fruitlessSpins.load(std::memory_order_relaxed);
    for (unsigned int spin = SpinsAfter(fruitless); spin != 0; --spin) {
        if (TryTake()) {
            m_fruitlessSpins.store(0, std::memory_order_relaxed);
            return 0;
        }
        YieldProcessor();
    }
    m_fruitlessSpins.store(fruitless + 1, std::memory_order_relaxed);
    State state = m_state.fetch_add(kOneSleeper, std::memory_order_relaxed) + kOneSleeper;
    for (;;) {
        while (CanTake(state)) {
            if (m_state.compare_exchange_weak(state, state - kOneSleeper - 1, std::memory_order_acquire,
                                              std::memory_order_relaxed)) {
                return 0;
            }
        }
        if (IsClosing(state)) {
            return VELM_ERROR_CORE_ILLEGAL_CALL;
        }
        unsigned int nothing = 0;
        WaitOnAddress(CountAddress(), &nothing, sizeof nothing, INFINITE);
        state = m_state.load(std::memory_order_relaxed);
    }
}

void* Semaphore::CountAddress() {
    return &m_state;
}

}  // namespace velm
