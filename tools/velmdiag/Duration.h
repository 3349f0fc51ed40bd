#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmdiag {

/// Adds an option that takes a duration: a number, which may have decimals, with ms, s, m or h; seconds
/// without a unit.
/// @param milliseconds  receives the duration, at least 1 ms and at most a day; its value is the default that
///                      help shows, unless it is 0
CLI::Option* AddDuration(CLI::App& command, const std::string& name, unsigned int& milliseconds,
                         const std::string& description);

}  // namespace velmdiag
