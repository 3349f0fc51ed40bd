#pragma once

#include <memory>

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"
#include "velm/core/ThreadConfig.h"

namespace velm {

/// A thread that runs one function. It can be started again after Join.
/// Threads: one at a time, unless an operation says otherwise.
class VELM_CORE_API Thread {
public:
    Thread();

    /// Joins a started thread, unless it is the calling one. A class that overrides operator() must join in
    /// its own destructor.
    virtual ~Thread();

    /// The thread's body, called on the new thread: runs the function given to Initialize.
    /// @param parameter  the argument of Start
    /// @return the exit code
    virtual int operator()(void* parameter);

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    /// Prepares a thread that will run `function(argument)`; does not start it.
    /// @param config  copied
    /// @param function  not null; its result is the thread's exit code
    /// @param argument  passed to the function; owned by the caller
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null function; VELM_ERROR_CORE_ILLEGAL_CALL while a
    ///         started thread has not been joined; VELM_ERROR_CORE_NOT_ENOUGH_MEMORY
    ErrorCode Initialize(const ThreadConfig& config, int (*function)(void*), void* argument);

    /// Starts the prepared thread.
    /// @param parameter  passed to operator(); owned by the caller
    /// @return 0; VELM_ERROR_CORE_ILLEGAL_CALL before Initialize, or while a started thread has not been
    ///         joined; VELM_ERROR_CORE_UNKNOWN when the system cannot create a thread
    ErrorCode Start(void* parameter);

    /// Blocks until the function has returned. The object can then be started or initialized again.
    /// @param exitCode  out: the function's result, converted to unsigned; may be null; unchanged on failure
    /// @return 0; VELM_ERROR_CORE_THREAD_EXCEPTION when the function did not return: it threw, or the thread
    ///         was killed or exited;
    ///         VELM_ERROR_CORE_ILLEGAL_CALL when there is nothing to join, or from the thread itself;
    ///         VELM_ERROR_CORE_UNKNOWN when the system's wait fails
    /// Threads: any but the joined one, one at a time.
    ErrorCode Join(unsigned long long* exitCode);

    /// Suspends the calling thread for at least `milliseconds`.
    /// @return 0
    /// Threads: any.
    static ErrorCode Sleep(unsigned int milliseconds);

private:
    struct Impl;
    std::shared_ptr<Impl> m_impl;
};

}  // namespace velm
