#pragma once

#include <atomic>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// A manual-reset or auto-reset event for the threads of one process.
class VELM_CORE_API SyncEvent {
public:
    /// @param manualReset  true: once set, the event stays set and releases every waiter; false: it releases
    ///                     one waiter and resets itself
    /// @param initiallySet  whether the event starts set
    SyncEvent(bool manualReset, bool initiallySet);

    /// Does not block. No thread may be waiting, except one that was killed.
    ~SyncEvent();

    SyncEvent(const SyncEvent&) = delete;
    SyncEvent& operator=(const SyncEvent&) = delete;

    /// Blocks, without a time limit, until the event is set.
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL instead of blocking while the process ends
    /// Threads: any.
    ErrorCode Wait();

    /// Sets the event; no effect if it is set already.
    /// @return 0
    /// Threads: any.
    ErrorCode Set();

private:
    // Set's release pairs with the acquire in Wait that finds the event set. Each Set is an exchange, which
    // continues the release sequences of earlier ones.
    std::atomic<unsigned int> m_set;
    bool m_manualReset;
};

}  // namespace velm
