#pragma once

#include <optional>
#include <string>

#include "Document.h"

namespace velmdiag::report {

/// Adds facts about the system, displays, adapters, clock, libraries and settings.
/// @param rulesPath  rules to check the adapters against; none by default
void AddFacts(Document& document, const std::optional<std::string>& rulesPath);

}  // namespace velmdiag::report
