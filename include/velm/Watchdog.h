#pragma once

#include "velm/UtilErrorCode.h"

struct HWND__;

namespace velm {

/// What a watchdog asks whether the watched activity is alive. Clients derive from it.
class VELM_UTIL_API WatchdogChecker {
public:
    virtual ~WatchdogChecker();

    /// Whether the activity is alive. The watchdog asks on the thread that owns its window; what the answer
    /// reads of another thread must be safe to read from there.
    /// @return true, unless overridden
    virtual bool IsActive();
};

/// Ends a message loop when the activity that it stands for has stalled: at a fixed period a window timer
/// asks a checker, and when that says no, posts a quit message with an exit code. As long as the loop still
/// runs and the checker still says no, every further tick posts another.
///
/// There is one watchdog in a process. It lives until the library is unloaded, which stops it.
///
/// Threads: Start and Stop are called on the thread that owns the window, whose message loop runs the timer.
/// The first GetInstance must not race with another call of it.
class VELM_UTIL_API Watchdog {
public:
    /// The watchdog.
    static Watchdog* GetInstance();

    /// Stops a running watchdog.
    virtual ~Watchdog();

    /// Sets the period of the next Start, 1000 ms at first. The system rounds very short ones up.
    void SetElapse(unsigned int milliseconds);

    /// The code that the quit message carries, 16 at first.
    void SetExitCode(int exitCode);
    int GetExitCode();  ///< the code that is set

    /// Starts the timer. A watchdog that runs already goes over to the new window and checker.
    /// @param window  the caller's, of the calling thread; must outlive the run
    /// @param checker  the caller's; must outlive the run
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when either is null; VELM_ERROR_UTIL_UNKNOWN when the system
    ///         gives no timer. After a failure the watchdog does what it did before.
    ErrorCode Start(HWND__* window, WatchdogChecker* checker);

    /// Stops the timer; no tick comes after it. Harmless when the watchdog does not run.
    /// @return 0
    ErrorCode Stop();

    /// Whether the activity is alive: the checker's answer while the watchdog runs, true while it does not.
    bool IsActive();

private:
    Watchdog();
    Watchdog(const Watchdog& other);

    static void TimerProc(HWND__* window, unsigned int message, unsigned long long timerId,
                          unsigned long time);

    bool mActive;
    HWND__* mWindow;
    unsigned long long mTimerId;  // what the system called the timer
    unsigned int mElapse;         // in milliseconds
    int mExitCode;
    WatchdogChecker* mChecker;  // not owned
};

}  // namespace velm
