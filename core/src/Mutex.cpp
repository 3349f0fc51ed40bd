#include "velm/core/Mutex.h"

#include <windows.h>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/ProcessEnd.h"

// Built on WaitOnAddress, not on std::mutex, which some runtimes allocate at the first lock and never free.
namespace velm {

ErrorCode Mutex::Initialize() {
    m_initialized.store(true, std::memory_order_release);
    return 0;
}

ErrorCode Mutex::Lock() {
    if (!m_initialized.load(std::memory_order_acquire)) {
        return VELM_ERROR_CORE_NOT_INITIALIZED;
    }
    const DWORD thread = GetCurrentThreadId();
    if (m_owner.load(std::memory_order_relaxed) != thread) {
        unsigned int state = 0;
        if (!m_state.compare_exchange_strong(state, 1, std::memory_order_acquire)) {
            while (m_state.exchange(2, std::memory_order_acquire) != 0) {
                if (IsProcessEnding()) {
                    break;  // the owner is dead, and so is every other thread
                }
                state = 2;
                WaitOnAddress(&m_state, &state, sizeof state, INFINITE);
            }
        }
        m_owner.store(thread, std::memory_order_relaxed);
    }
    ++m_depth;
    return 0;
}

ErrorCode Mutex::Unlock() {
    if (m_owner.load(std::memory_order_relaxed) != GetCurrentThreadId()) {
        return VELM_ERROR_CORE_ILLEGAL_CALL;
    }
    if (--m_depth == 0) {
        m_owner.store(0, std::memory_order_relaxed);
        // The next owner may destroy the mutex; the wake call uses the address only.
        void* const address = &m_state;
        if (m_state.exchange(0, std::memory_order_release) == 2) {
            WakeByAddressSingle(address);
        }
    }
    return 0;
}

}  // namespace velm
