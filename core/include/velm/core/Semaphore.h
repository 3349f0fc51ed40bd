#pragma once

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

struct SemaphoreState;

/// A counting semaphore for the threads of one process. While the count is above 0, Wait and Post are one
/// atomic operation each. At 0, Wait may spin before it sleeps, for about as long as waking a thread takes
/// and at most some 100 microseconds.
class VELM_CORE_API Semaphore {
public:
    /// If memory runs out, every operation of the object fails; check with Post(0).
    /// @param initial  initial count; capped at `maximum`
    /// @param maximum  largest count; capped at 2^31 - 1
    Semaphore(unsigned int initial, unsigned int maximum);

    /// Makes every blocked Wait fail and waits until those threads have left it: up to 200 ms, since a killed
    /// thread never leaves, and not at all while the process ends. The memory that waiters use outlives the
    /// object; a killed waiter leaks 128 bytes.
    /// Threads: no other thread may start an operation once this runs.
    ~Semaphore();

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Blocks, without a time limit, until the count is above 0, then decrements it.
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL when the semaphore is destroyed meanwhile, or instead of
    ///         blocking while the process ends; VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    /// Threads: any.
    ErrorCode Wait();

    /// Decrements the count if it is above 0; never blocks.
    /// @return whether it did
    /// Threads: any.
    bool TryTake();

    /// Adds `count` to the semaphore and wakes as many waiters. The thread that this call wakes may destroy
    /// the semaphore.
    /// @return 0; VELM_ERROR_CORE_LIMIT_EXCEEDED when the sum would exceed the maximum (the count is
    ///         unchanged); VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    /// Threads: any.
    ErrorCode Post(unsigned int count);

private:
    SemaphoreState* m_state;  // shared with the threads in Wait; the last user frees it
};

}  // namespace velm
