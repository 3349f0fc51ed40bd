#pragma once

#include <atomic>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// A counting semaphore between the threads of one process. While it has something to take, taking and
/// posting are one atomic operation each; only a thread that finds nothing asks the system to sleep, after
/// spinning for some 10 microseconds at most.
class VELM_CORE_API Semaphore {
public:
    /// @param initial  the count to begin with; more than `maximum` counts as `maximum`
    /// @param maximum  the count that Post never exceeds; more than 2^31 - 1 counts as 2^31 - 1
    Semaphore(unsigned int initial, unsigned int maximum);

    /// Turns away the threads that are blocked in Wait, however many, and returns when the last of them has
    /// left. No thread may begin an operation any more.
    ~Semaphore();

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Blocks, without a time limit, until the count is above 0, then takes one.
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL when the semaphore is destroyed meanwhile
    /// Threads: any.
    ErrorCode Wait();

    /// Takes one if there is one.
    /// @return whether it did
    /// Threads: any.
    bool TryTake();

    /// Adds `count` and wakes as many waiters. A semaphore may be destroyed by the thread that this call
    /// wakes.
    /// @return 0; VELM_ERROR_CORE_LIMIT_EXCEEDED when the sum would exceed the maximum (the count stays)
    /// Threads: any.
    ErrorCode Post(unsigned int count);

private:
    ErrorCode WaitSlowly();
    ErrorCode SpinThenSleep();
    void* CountAddress();

    // The padding keeps neighbours on the heap off the cache line of the state.
    unsigned char m_padBefore[48];
    // Low half: the count, and the closing bit. High half: the number of threads that sleep. In one word, a
    // post that finds no sleeper and a thread that goes to sleep cannot miss each other.
    std::atomic<unsigned long long> m_state;
    // Threads inside WaitSlowly, and the closing bit.
    std::atomic<unsigned int> m_waiters;
    unsigned int m_maximum;
    std::atomic<unsigned int> m_fruitlessSpins;  // since spinning last got a count
    unsigned char m_padAfter[44];
};

}  // namespace velm
