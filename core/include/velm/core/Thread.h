#pragma once

#include <memory>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"
#include "velm/core/ThreadConfig.h"

namespace velm {

/// One thread of the system that runs a function once.
class VELM_CORE_API Thread {
public:
    Thread();

    /// Waits for a thread that was started and not joined, unless it is the calling thread itself. A class
    /// that overrides operator() joins in its own destructor.
    virtual ~Thread();

    /// The thread's body: runs the function given to Initialize. The thread calls it.
    /// @param parameter  what Start was given
    /// @return the exit code
    virtual int operator()(void* parameter);

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Prepares a thread that will run `function(argument)`; does not start it.
    /// @param function  not null; its result is the thread's exit code
    /// @param argument  handed to the function; the caller's
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null function; VELM_ERROR_CORE_ILLEGAL_CALL while a
    ///         thread is running or not joined; VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    ErrorCode Initialize(const ThreadConfig& config, int (*function)(void*), void* argument);

    /// Starts the prepared thread.
    /// @param parameter  handed to operator()
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL before Initialize, or when started already;
    ///         VELM_ERROR_CORE_UNKNOWN when the system gives no thread
    ErrorCode Start(void* parameter);

    /// Waits until the function has returned. The thread can then be started, or initialised, anew.
    /// @param exitCode  receives what the function returned, converted to unsigned; may be null; unchanged on
    ///                  failure
    /// @return 0; VELM_ERROR_CORE_THREAD_EXCEPTION when the function never returned: it ended by an
    ///         exception, or the thread was killed or ended itself;
    ///         VELM_ERROR_CORE_ILLEGAL_CALL when there is nothing to join, or on the thread itself;
    ///         VELM_ERROR_CORE_UNKNOWN when the system fails the wait
    /// Threads: any but the joined one, one at a time.
    ErrorCode Join(unsigned long long* exitCode);

    /// Suspends the calling thread for at least `milliseconds`.
    /// @return 0
    static ErrorCode Sleep(unsigned int milliseconds);

private:
    struct Impl;
    std::shared_ptr<Impl> m_impl;
};

}  // namespace velm
