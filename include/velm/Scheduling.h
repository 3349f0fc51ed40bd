#pragma once

#include "velm/core/Export.h"

/// The priority of the process.
class VELM_UTIL_API SchedulingProcess {
public:
    /// @{
    /// There is nothing in an object to copy.
    SchedulingProcess(const SchedulingProcess& other);
    SchedulingProcess& operator=(const SchedulingProcess& other);
    /// @}
    virtual ~SchedulingProcess();

    /// Gives the process the priority class HIGH_PRIORITY_CLASS.
    /// @return whether the system granted it; if not, GetLastError says why
    /// Threads: any.
    static bool SetPriorityHigh();

private:
    SchedulingProcess();
};

/// A thread's registration with the multimedia class scheduler, under the task "Audio".
///
/// A copy starts unregistered: the registration stays with its source, which alone reverts it.
///
/// Threads: the registration belongs to the thread that calls StartThreadPriorityHigh, and the same thread
/// reverts it, also by destroying the object.
class VELM_UTIL_API SchedulingThread {
public:
    SchedulingThread();
    /// Unregistered.
    SchedulingThread(const SchedulingThread& other);
    /// A registration of its own stays.
    SchedulingThread& operator=(const SchedulingThread& other);

    /// Reverts a registration that is still held.
    virtual ~SchedulingThread();

    /// Registers the calling thread and raises it within the task to AVRT_PRIORITY_CRITICAL. A registration
    /// that the object holds already is forgotten, not reverted.
    /// @return whether both were granted; if not, the object holds no registration and GetLastError says why
    bool StartThreadPriorityHigh();

    /// Reverts the registration.
    /// @return false when there is none, or when the system refuses: the registration is then kept
    bool EndThreadPriority();

private:
    void* mTaskHandle;  // null when unregistered
};
