/// @file
/// Loses and recovers a Direct3D 9 device, for the commands "device" and "report".
#pragma once

#include <string>

#include "Report.h"

namespace velmdiag {

/// Totals over all rounds.
struct DeviceCounts {
    long long resetsRefused = 0;
    long long resetsDone = 0;
    long long picturesEqual = 0;
};

struct DeviceOutcome {
    DeviceCounts counts;
    std::string unregistered;  ///< the result of the reset with an unregistered surface, such as "0x8876086C"
    double milliseconds = 0;
    unsigned long referencesBefore = 0;
    unsigned long referencesAfter = 0;
};

/// Opens a window with a device, and loses and recovers its surfaces. Throws Failure: with kNotDone if there
/// is no device, with 1 if a round fails.
/// @param showProgress  on standard error, if it is a terminal
DeviceOutcome RunDeviceRounds(unsigned int rounds, bool showProgress);

void AddDeviceOutcome(Report& report, unsigned int rounds, const DeviceOutcome& outcome);

/// Throws Failure if the rounds leaked references to the device.
void CheckDeviceReferences(const DeviceOutcome& outcome);

}  // namespace velmdiag
