/// @file
/// What the stand-ins share: the check that lets a test make a call fail, and the resets of their settings.
#pragma once

#include <atomic>

#include "velm/posix/Control.h"

namespace velm::posix {

/// Whether a test makes calls fail or records them.
extern std::atomic<bool> g_watching;

bool MustFailWatched(const char* name);

/// Every stand-in asks this first, with its own name, and fails when told to. The last error is then set
/// already.
inline bool MustFail(const char* name) {
    return g_watching.load(std::memory_order_relaxed) && MustFailWatched(name);
}

/// Keeps what a call was handed, for ShownCalls, while calls are recorded.
void RecordShown(ShownCall call);

void ResetClock();
void ResetDisplays();
void ResetModules();
void ResetProcess();
void ResetText();

}  // namespace velm::posix
