#pragma once

#include "velm/core/SyncEvent.h"
#include "velm/UtilErrorCode.h"

namespace velm {

/// An auto-reset event. Each trigger releases at most one waiter; a trigger without a waiter releases the
/// next one.
/// Threads: any.
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
