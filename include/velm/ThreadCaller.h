#pragma once

#include "velm/core/ThreadConfig.h"
#include "velm/UtilErrorCode.h"

namespace velm {

class Thread;

/// Runs a function of the caller's on a thread of its own. How starting and stopping went is read from
/// GetState:
///
///     65535  no thread: never started, or stopped and joined
///     0      started and not stopped
///     1      the system gave no thread
///     2      the thread could not be prepared; a null function, for one
///     3      no memory for the thread object or its name
///     -1     the thread could not be joined, or its function never returned (an exception, a killed thread)
///
/// Stop leaves the states other than 0 as they are; Start replaces any.
///
/// A copy has the identifier, the state and the name of its source at that moment. The thread stays with the
/// source, which alone joins it: on a copy Stop waits for nothing, and turns state 0 into 65535. Copying
/// throws std::bad_alloc when there is no memory for the name.
///
/// Threads: one controlling thread for all objects that start threads; the counter has no lock.
class VELM_UTIL_API ThreadCaller {
public:
    ThreadCaller();
    /// Has the identifier, the state and the name of the other, but no thread.
    ThreadCaller(const ThreadCaller& other);
    /// Stops a thread of its own first.
    ThreadCaller& operator=(const ThreadCaller& other);

    /// Stops the thread.
    ~ThreadCaller();

    /// Starts a thread that runs `function(argument)`. Its identifier becomes idBase * 1000 + mCount. When a
    /// thread was started before and not stopped, it runs on; the state is that of the new one, and Stop
    /// waits for both.
    /// @param function  its result is not kept
    /// @param argument  the caller's; must live until Stop returns
    /// @param name  under which debuggers show the thread, UTF-8; copied; null counts as ""
    void Start(int (*function)(void*), void* argument, const char* name, int idBase);
    /// Starts a thread whose `idBase` is 0.
    void Start(int (*function)(void*), void* argument, const char* name);
    /// Starts a thread named "0".
    void Start(int (*function)(void*), void* argument, int idBase);

    /// Waits until the function has returned and releases the thread. Does nothing when there is none. It
    /// must not be called by the thread itself.
    void Stop();

    /// The state code; see above.
    int GetState();

    /// Counts the calls of Start in this process, whatever came of them.
    static int mCount;

private:
    int mId;
    int mState;
    ThreadConfig mConfig;
    Thread* mThread;  // owned
};

}  // namespace velm
