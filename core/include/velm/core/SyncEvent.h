#pragma once

#include <atomic>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// An event that threads of one process wait for.
class VELM_CORE_API SyncEvent {
public:
    /// @param manualReset  true: once set, the event stays set and releases every waiter; false: it resets
    ///                     itself as one waiter leaves
    /// @param initiallySet  whether the event starts set
    SyncEvent(bool manualReset, bool initiallySet);

    /// Waits for nobody. No thread may be waiting, but for one that was killed.
    ~SyncEvent();

    SyncEvent(const SyncEvent&) = delete;
    SyncEvent& operator=(const SyncEvent&) = delete;

    /// Blocks, without a time limit, until the event is set.
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL when it would block while the process ends
    /// Threads: any.
    ErrorCode Wait();

    /// Sets the event. Setting a set event changes nothing.
    /// @return 0
    /// Threads: any.
    ErrorCode Set();

private:
    // Set's release pairs with the acquire that finds it set in Wait. Each Set is an exchange, and so part of
    // the release sequences of those before it.
    std::atomic<unsigned int> m_set;
    bool m_manualReset;
};

}  // namespace velm
