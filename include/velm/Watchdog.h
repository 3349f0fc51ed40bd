#pragma once

#include "velm/UtilErrorCode.h"

struct HWND__;

namespace velm {

/// Tells the watchdog whether the activity is alive. Clients derive from it.
class VELM_UTIL_API WatchdogChecker {
public:
    virtual ~WatchdogChecker();

    /// Whether the activity is alive. Must have no side effect on the next answer: Watchdog::IsActive calls
    /// it too. So answer from the age of a time stamp, not from "progress since the last call".
    /// @return true, unless overridden
    /// Threads: called on the thread that owns the watchdog's window, and on any that calls
    /// Watchdog::IsActive.
    virtual bool IsActive();
};

/// Ends a message loop whose activity has stalled. A window timer polls a checker; while the checker answers
/// false, every tick posts a quit message with an exit code.
///
/// Windows delivers timer messages only when no other message is waiting: a thread flooded with posted
/// messages never polls the checker. To detect that, let a timer of your own set a time stamp, and compare
/// its age with the period on another thread.
///
/// A process has one watchdog. It lives until the library is unloaded, which stops it.
///
/// Threads: call Start and Stop on the thread that owns the window and runs its message loop. The first
/// GetInstance call must not race with another.
class VELM_UTIL_API Watchdog {
public:
    /// Returns the process-wide watchdog, owned by the library.
    static Watchdog* GetInstance();

    /// Stops the watchdog if it runs.
    virtual ~Watchdog();

    /// Sets the period for the next Start; 1000 ms by default. The system rounds up very short ones.
    void SetElapse(unsigned int milliseconds);

    /// Sets the exit code of the quit message; 16 by default.
    void SetExitCode(int exitCode);
    int GetExitCode();  ///< the exit code of the quit message

    /// Starts the timer. If the watchdog runs already, it switches to the new window and checker.
    /// @param window  belongs to the calling thread and to the caller; must live until Stop
    /// @param checker  owned by the caller; must live until Stop
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when either is null; VELM_ERROR_UTIL_UNKNOWN when the system
    ///         cannot create a timer. After a failure the watchdog behaves as before.
    ErrorCode Start(HWND__* window, WatchdogChecker* checker);

    /// Stops the timer; no tick follows. Does nothing when the watchdog does not run.
    /// @return 0
    ErrorCode Stop();

    /// Whether the activity is alive: the checker's answer while the watchdog runs, otherwise true.
    bool IsActive();

private:
    Watchdog();
    Watchdog(const Watchdog& other);

    static void TimerProc(HWND__* window, unsigned int message, unsigned long long timerId,
                          unsigned long time);

    bool mActive;
    HWND__* mWindow;
    unsigned long long mTimerId;  // as returned by SetTimer
    unsigned int mElapse;         // in milliseconds
    int mExitCode;
    WatchdogChecker* mChecker;  // not owned
};

}  // namespace velm
