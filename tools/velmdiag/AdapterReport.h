/// @file
/// The facts about display adapters, for the commands that show them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Report.h"

namespace velmdiag {

struct AdapterReport {
    Report facts;          ///< and the verdict, when there are rules
    bool accepted = true;  ///< by the rules, or without rules
};

/// Throws Failure when a rule file cannot be used.
void CheckRuleFile(const std::string& path);

/// Reads the facts about the adapters and checks them by rules. Throws Failure when that is not possible.
/// @param index  of the only adapter wanted; all by default
/// @param rulesPath  the rule file; none by default
std::vector<AdapterReport> ReportAdapters(const std::optional<unsigned int>& index,
                                          const std::optional<std::string>& rulesPath);

}  // namespace velmdiag
