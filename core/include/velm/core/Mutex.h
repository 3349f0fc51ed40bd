#pragma once

#include <atomic>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// A recursive mutex for the threads of one process.
class VELM_CORE_API Mutex {
public:
    Mutex() = default;
    ~Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    /// Makes the mutex usable; further calls do nothing.
    /// @return 0
    ErrorCode Initialize();

    /// Acquires the lock; blocks while another thread owns it. The owner may lock again; each Lock needs a
    /// matching Unlock. A thread that is killed while it owns the lock leaves it locked for good, except
    /// while the process ends: Lock then succeeds regardless, so that destructors can finish.
    /// @return 0; VELM_ERROR_CORE_NOT_INITIALIZED before Initialize
    /// Threads: any.
    ErrorCode Lock();

    /// Releases the lock.
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL when the calling thread does not own the lock
    /// Threads: any.
    ErrorCode Unlock();

private:
    // 0: free; 1: locked; 2: locked, with threads possibly asleep. Unlock's release pairs with the acquire
    // that finds 0 in Lock; the exchanges in between continue the release sequence.
    std::atomic<unsigned int> m_state{0};
    // Initialize's release pairs with the acquire in Lock, which publishes the initializing thread's writes.
    std::atomic<bool> m_initialized{false};
    // The owner's thread id, 0 for none. Relaxed is enough: a thread only asks whether the id is its own, and
    // only the thread itself ever stores that value.
    std::atomic<unsigned long> m_owner{0};
    unsigned int m_depth = 0;  // locks that the owner has not released yet
};

}  // namespace velm
