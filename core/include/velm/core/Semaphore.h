#pragma once

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

struct SemaphoreState;

/// A counting semaphore between the threads of one process. While it has something to take, taking and
/// posting are one atomic operation each; only a thread that finds nothing asks the system to sleep, after
/// spinning for some 10 microseconds at most.
class VELM_CORE_API Semaphore {
public:
    /// @param initial  the count to begin with; more than `maximum` counts as `maximum`
    /// @param maximum  the count that Post never exceeds; more than 2^31 - 1 counts as 2^31 - 1
    /// Where there is no memory for the semaphore, every operation fails; Post(0) tells.
    Semaphore(unsigned int initial, unsigned int maximum);

    /// Turns away the threads that are blocked in Wait, however many, and waits until the last of them has
    /// left: for 200 ms at most, because a thread that was killed never leaves, and not at all while the
    /// process ends. What a waiter touches outlives the semaphore; 128 bytes stay allocated for one that was
    /// killed. No thread may begin an operation any more.
    ~Semaphore();

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    /// Blocks, without a time limit, until the count is above 0, then takes one.
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL when the semaphore is destroyed meanwhile, or when it would
    ///         block while the process ends; VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    /// Threads: any.
    ErrorCode Wait();

    /// Takes one if there is one.
    /// @return whether it did
    /// Threads: any.
    bool TryTake();

    /// Adds `count` and wakes as many waiters. A semaphore may be destroyed by the thread that this call
    /// wakes.
    /// @return 0; VELM_ERROR_CORE_LIMIT_EXCEEDED when the sum would exceed the maximum (the count stays);
    ///         VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    /// Threads: any.
    ErrorCode Post(unsigned int count);

private:
    SemaphoreState* m_state;  // shared with the threads in Wait; the last one frees it
};

}  // namespace velm
