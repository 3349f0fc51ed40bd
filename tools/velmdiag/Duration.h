#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace velmdiag {

/// Adds an option that takes a duration: a number, possibly with decimals, and the unit ms, s, m or h; in
/// seconds without a unit.
/// @param milliseconds  receives the duration, from 1 ms to a day; unless 0, its initial value is the
///                      default that the help shows
CLI::Option* AddDuration(CLI::App& command, const std::string& name, unsigned int& milliseconds,
                         const std::string& description);

}  // namespace velmdiag
