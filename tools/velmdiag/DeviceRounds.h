/// @file
/// Loses and recovers a Direct3D 9 device, for the commands that do.
#pragma once

#include <string>

#include "Report.h"

namespace velmdiag {

/// What was seen to happen.
struct DeviceCounts {
    long long resetsRefused = 0;
    long long resetsDone = 0;
    long long picturesEqual = 0;
};

struct DeviceOutcome {
    DeviceCounts counts;
    std::string unregistered;  ///< the code of the reset that was refused, such as "0x8876086C"
    double milliseconds = 0;
    unsigned long referencesBefore = 0;
    unsigned long referencesAfter = 0;
};

/// Opens a window with a device and loses and recovers its surfaces. Throws Failure: with kNotDone when there
/// is no device, with 1 when a round did not go as it must.
/// @param showProgress  on standard error, if it is a terminal
DeviceOutcome RunDeviceRounds(unsigned int rounds, bool showProgress);

void AddDeviceOutcome(Report& report, unsigned int rounds, const DeviceOutcome& outcome);

/// Throws Failure when the rounds left references to the device behind.
void CheckDeviceReferences(const DeviceOutcome& outcome);

}  // namespace velmdiag
