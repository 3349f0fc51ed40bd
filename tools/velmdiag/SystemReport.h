/// @file
/// Facts about the system, for the commands that show them.
#pragma once

#include "Report.h"

namespace velmdiag {

/// Adds the path of the program and of its resources.
void AddPaths(Report& report);

}  // namespace velmdiag
