#include "velm/core/Mutex.h"

#include <windows.h>

#include <system_error>

#include "velm/core/CoreErrorCode.h"

namespace velm {

ErrorCode Mutex::Initialize() {
    m_initialized.store(true, std::memory_order_release);
    return 0;
}

ErrorCode Mutex::Lock() {
    if (!m_initialized.load(std::memory_order_acquire)) {
        return VELM_ERROR_CORE_NOT_INITIALIZED;
    }
    try {
        m_mutex.lock();
    } catch (const std::system_error&) {
        return VELM_ERROR_CORE_UNKNOWN;
    }
    m_owner.store(GetCurrentThreadId(), std::memory_order_relaxed);
    ++m_depth;
    return 0;
}

ErrorCode Mutex::Unlock() {
    if (m_owner.load(std::memory_order_relaxed) != GetCurrentThreadId()) {
        return VELM_ERROR_CORE_ILLEGAL_CALL;
    }
    if (--m_depth == 0) {
        m_owner.store(0, std::memory_order_relaxed);
    }
    m_mutex.unlock();
    return 0;
}

}  // namespace velm
