#pragma once

#include <optional>
#include <string>

#include "Document.h"

namespace velmdiag::report {

/// Adds what is known about system, displays, adapters, clock, libraries and settings.
/// @param rulesPath  rules that judge the adapters; none by default
void AddFacts(Document& document, const std::optional<std::string>& rulesPath);

}  // namespace velmdiag::report
