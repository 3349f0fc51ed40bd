#pragma once

#include "velm/core/SyncEvent.h"
#include "velm/UtilErrorCode.h"

namespace velm {

/// An event that one thread waits for and another triggers. Each trigger lets at most one waiter go, and a
/// trigger that finds no waiter lets the next one through.
/// Threads: any may wait and trigger.
class VELM_UTIL_API AutoResetSyncEventWrapper {
public:
    AutoResetSyncEventWrapper();
    ~AutoResetSyncEventWrapper();
    AutoResetSyncEventWrapper(const AutoResetSyncEventWrapper&) = delete;
    AutoResetSyncEventWrapper& operator=(const AutoResetSyncEventWrapper&) = delete;

    /// @{
    /// Does nothing: the event is ready from construction to destruction.
    /// @return 0
    ErrorCode Initialize();
    ErrorCode Terminate();
    /// @}

    /// Blocks, without a time limit, until the event is triggered.
    /// @return as SyncEvent::Wait
    ErrorCode Wait();

    /// Triggers the event.
    /// @return as SyncEvent::Set
    ErrorCode Trigger();

private:
    SyncEvent mEvent;
};

}  // namespace velm
