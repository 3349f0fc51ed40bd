/// @file
/// Both classes are in the global namespace, unlike the rest of the library; clients link to them there.
#pragma once

#include "velm/core/Export.h"

/// The priority of the process.
class VELM_UTIL_API SchedulingProcess {
public:
    /// @{
    /// Objects have no state.
    SchedulingProcess(const SchedulingProcess& other);
    SchedulingProcess& operator=(const SchedulingProcess& other);
    /// @}
    virtual ~SchedulingProcess();

    /// Sets the priority class of the process to HIGH_PRIORITY_CLASS.
    /// @return whether that succeeded; if not, see GetLastError
    /// Threads: any.
    static bool SetPriorityHigh();

private:
    SchedulingProcess();
};

/// A thread's registration with the multimedia class scheduler (MMCSS), under the task "Audio".
///
/// A copy is unregistered: the registration remains with the source, which alone reverts it.
///
/// Threads: StartThreadPriorityHigh registers the calling thread; the same thread must revert the
/// registration or destroy the object.
class VELM_UTIL_API SchedulingThread {
public:
    SchedulingThread();
    /// Starts unregistered.
    SchedulingThread(const SchedulingThread& other);
    /// Changes nothing: a registration is neither copied nor reverted.
    SchedulingThread& operator=(const SchedulingThread& other);

    /// Reverts the registration, if any.
    virtual ~SchedulingThread();

    /// Registers the calling thread and raises its priority within the task to AVRT_PRIORITY_CRITICAL. Leaks
    /// the previous registration, if any: call EndThreadPriority first.
    /// @return whether both succeeded; if not, the object has no registration; see GetLastError
    bool StartThreadPriorityHigh();

    /// Reverts the registration.
    /// @return false if there is none, or if the system fails to revert it; the object then keeps it
    bool EndThreadPriority();

private:
    void* mTaskHandle;  // null when unregistered
};
