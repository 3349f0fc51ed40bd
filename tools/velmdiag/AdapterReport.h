/// @file
/// The facts about display adapters, for the commands that show them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Report.h"

namespace velmdiag {

struct AdapterReport {
    Report facts;          ///< followed by the verdict, if there are rules
    bool accepted = true;  ///< true without rules
};

/// Throws Failure if a rule file cannot be read or is invalid.
void CheckRuleFile(const std::string& path);

/// Reads the facts about the adapters and checks them against the rules. Throws Failure if
/// either is impossible.
/// @param index  the only adapter to report; all by default
/// @param rulesPath  the rule file; none by default
std::vector<AdapterReport> ReportAdapters(const std::optional<unsigned int>& index,
                                          const std::optional<std::string>& rulesPath);

}  // namespace velmdiag
