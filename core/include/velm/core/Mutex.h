#pragma once

#include <atomic>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// A recursive mutual-exclusion lock between the threads of one process.
class VELM_CORE_API Mutex {
public:
    Mutex() = default;
    ~Mutex() = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    /// Makes the mutex usable. Calling it again changes nothing.
    /// @return 0
    ErrorCode Initialize();

    /// Waits until no other thread holds the lock and takes it. The holder may take it again; each Lock needs
    /// its Unlock. A thread that is killed while it holds the lock never gives it back; only while the
    /// process ends is it taken from such a thread, so that destructors come through.
    /// @return 0; VELM_ERROR_CORE_NOT_INITIALIZED before Initialize
    /// Threads: any.
    ErrorCode Lock();

    /// Gives the lock back.
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL when the calling thread does not hold the lock
    /// Threads: any.
    ErrorCode Unlock();

private:
    // 0: free; 1: held; 2: held, and a thread may sleep until it is not. Unlock's release pairs with the
    // acquire that finds 0 in Lock; the exchanges in between keep up the release sequence.
    std::atomic<unsigned int> m_state{0};
    // Initialize's release pairs with the acquire in Lock, for what the initialising thread wrote before.
    std::atomic<bool> m_initialized{false};
    // The holder's thread identifier, 0 for none. Relaxed throughout: a thread finds its own identifier only
    // where it wrote it itself, and that no other value is its own holds in every order.
    std::atomic<unsigned long> m_owner{0};
    unsigned int m_depth = 0;  // the holder's
};

}  // namespace velm
