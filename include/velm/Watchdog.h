#pragma once

#include "velm/UtilErrorCode.h"

struct HWND__;

namespace velm {

/// Tells the watchdog whether the activity is alive. Clients derive from it.
class VELM_UTIL_API WatchdogChecker {
public:
    virtual ~WatchdogChecker();

    /// Whether the activity is alive. Must not change the answer of the next call: Watchdog::IsActive asks too.
    /// @return true, unless overridden
    /// Threads: called on the thread that owns the watchdog's window, and on any that calls Watchdog::IsActive.
    virtual bool IsActive();
};

/// Ends a message loop whose activity has stalled. A window timer asks a checker at a fixed period; when the
/// answer is no, it posts a quit message with an exit code, and again at every tick until the loop ends or the
/// answer is yes.
///
/// The system delivers timer messages only while no other message waits: a thread flooded with posted messages
/// never asks the checker. To detect that, record the time of each IsActive call in the checker and compare it
/// with the period on another thread.
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

    /// Starts the timer. A running watchdog switches to the new window and checker.
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
