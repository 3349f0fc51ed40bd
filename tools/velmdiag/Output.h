#pragma once

#include <string>

namespace velmdiag {

/// The exit status if a command succeeded but its output could not be written completely.
constexpr int kOutputLost = 3;

/// Flushes standard output. Call it once, after all output.
/// @return why output was lost; empty if none was
std::string FinishOutput();

}  // namespace velmdiag
