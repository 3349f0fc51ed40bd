/// @file
/// What the stand-ins share: the check that lets a test make a call fail, and the resets of their settings.
#pragma once

#include <atomic>
#include <new>

#include "velm/posix/Control.h"

namespace velm::posix {

/// Whether a test makes calls fail or records them.
extern std::atomic<bool> g_watching;

bool MustFailWatched(const char* name);

/// How many stand-ins the thread is inside of.
inline thread_local int t_withinSystem = 0;

/// Every stand-in asks this first, with its own name, and fails when told to. The last error is then set
/// already. The calls that stand-ins make themselves are not the library's: they are neither recorded nor
/// failed.
inline bool MustFail(const char* name) {
    return g_watching.load(std::memory_order_relaxed) && t_withinSystem == 0 && MustFailWatched(name);
}

/// Runs the body of a stand-in that allocates or makes calls itself. Memory that runs out fails the call, as
/// on Windows, instead of leaving it as an exception.
template <typename Result, typename Body>
Result WithinSystem(Result failure, Body body) {
    const struct Depth {
        Depth() { ++t_withinSystem; }
        ~Depth() { --t_withinSystem; }
    } depth;
    try {
        return body();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return failure;
    }
}

/// Keeps what a call was handed, for ShownCalls, while calls are recorded.
void RecordShown(ShownCall call);

void ResetClock();
void ResetDisplays();
void ResetModules();
void ResetProcess();
void ResetText();

}  // namespace velm::posix
