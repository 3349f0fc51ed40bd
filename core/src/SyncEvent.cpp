#include "velm/core/SyncEvent.h"

#include <windows.h>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/ProcessEnd.h"

namespace velm {

SyncEvent::SyncEvent(bool manualReset, bool initiallySet)
    : m_set(initiallySet ? 1 : 0), m_manualReset(manualReset) {}

SyncEvent::~SyncEvent() = default;

ErrorCode SyncEvent::Wait() {
    for (;;) {
        unsigned int set = 1;
        if (m_manualReset ? m_set.load(std::memory_order_acquire) != 0
                          : m_set.compare_exchange_strong(set, 0, std::memory_order_acquire)) {
            return 0;
        }
        if (IsProcessEnding()) {
            return VELM_ERROR_CORE_ILLEGAL_CALL;
        }
        unsigned int reset = 0;
        WaitOnAddress(&m_set, &reset, sizeof reset, INFINITE);
    }
}

ErrorCode SyncEvent::Set() {
    // Read before the exchange: a released waiter may destroy the event. The wake calls use the address only.
    const bool manualReset = m_manualReset;
    void* const address = &m_set;
    // Not a store: it would break the release sequence of an earlier Set, and hide that thread's writes.
    m_set.exchange(1, std::memory_order_release);
    if (manualReset) {
        WakeByAddressAll(address);
    } else {
        WakeByAddressSingle(address);
    }
    return 0;
}

}  // namespace velm
