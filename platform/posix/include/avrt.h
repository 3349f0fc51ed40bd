/// @file
/// The multimedia class scheduler. Tracks registrations but does not change any thread's priority.
#pragma once

#include "windef.h"

extern "C" {

enum AVRT_PRIORITY {
    AVRT_PRIORITY_LOW = -1,
    AVRT_PRIORITY_NORMAL = 0,
    AVRT_PRIORITY_HIGH = 1,
    AVRT_PRIORITY_CRITICAL = 2,
};

/// Supports the task "Audio" only.
HANDLE AvSetMmThreadCharacteristicsW(LPCWSTR task, LPDWORD taskIndex);
BOOL AvSetMmThreadPriority(HANDLE registration, AVRT_PRIORITY priority);
BOOL AvRevertMmThreadCharacteristics(HANDLE registration);

}  // extern "C"
