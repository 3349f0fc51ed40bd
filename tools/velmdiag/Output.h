#pragma once

#include <string>

namespace velmdiag {

/// The exit status of a command that did its work when standard output did not take all of what it printed.
constexpr int kOutputLost = 3;

/// Writes out what standard output still holds. To be called once, after the last command printed.
/// @return empty when all that the program printed was taken; else what went wrong
std::string FinishOutput();

}  // namespace velmdiag
