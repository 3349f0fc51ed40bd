#pragma once

#include "velm/core/ThreadConfig.h"
#include "velm/UtilErrorCode.h"

namespace velm {

class Thread;

/// Runs a caller's function on a new thread. GetState returns the outcome:
///
///     65535  no thread: never started, or stopped and joined
///     0      started, not stopped yet
///     1      the system could not create a thread
///     2      the thread could not be prepared, for example because the function is null
///     3      out of memory for the thread object or its name
///     -1     the join failed, or the function did not return (it threw, or the thread was killed)
///
/// Stop changes state 0 only; Start replaces any.
///
/// A copy has the source's id, state and name at that time. The thread remains with the source, which alone
/// joins it: on a copy, Stop does not wait and changes state 0 to 65535. Copying throws std::bad_alloc when
/// out of memory for the name.
///
/// Threads: one thread must control all objects that start threads; mCount has no lock.
class VELM_UTIL_API ThreadCaller {
public:
    ThreadCaller();
    /// Copies id, state and name, but not the thread.
    ThreadCaller(const ThreadCaller& other);
    /// Stops its own thread, then copies id, state and name.
    ThreadCaller& operator=(const ThreadCaller& other);

    /// Stops the thread.
    ~ThreadCaller();

    /// Starts a thread that runs `function(argument)` and has the id idBase * 1000 + mCount. An earlier
    /// thread that was not stopped keeps running: GetState then describes the new thread, and Stop waits for
    /// both.
    /// @param function  its result is ignored
    /// @param argument  owned by the caller; must live until Stop returns
    /// @param name  shown by debuggers; UTF-8, copied; null counts as ""
    void Start(int (*function)(void*), void* argument, const char* name, int idBase);
    /// Starts a thread with an `idBase` of 0.
    void Start(int (*function)(void*), void* argument, const char* name);
    /// Starts a thread named "0".
    void Start(int (*function)(void*), void* argument, int idBase);

    /// Waits until the function has returned, then releases the thread. Does nothing without one. The thread
    /// itself must not call it.
    void Stop();

    /// Returns the state code; see above.
    int GetState();

    /// Number of Start calls in this process, successful or not.
    static int mCount;

private:
    int mId;
    int mState;
    ThreadConfig mConfig;
    Thread* mThread;  // owned
};

}  // namespace velm
