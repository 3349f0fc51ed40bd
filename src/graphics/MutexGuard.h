#pragma once

#include "velm/core/Mutex.h"

namespace velm {

/// Locks a mutex for its scope. If that fails, the scope runs without the lock, and nothing is unlocked.
class MutexGuard {
public:
    explicit MutexGuard(Mutex& mutex) : m_mutex(mutex), m_locked(!mutex.Lock().IsFailed()) {}
    ~MutexGuard() {
        if (m_locked) {
            m_mutex.Unlock();
        }
    }
    MutexGuard(const MutexGuard&) = delete;
    MutexGuard& operator=(const MutexGuard&) = delete;

private:
    Mutex& m_mutex;
    const bool m_locked;
};

}  // namespace velm
