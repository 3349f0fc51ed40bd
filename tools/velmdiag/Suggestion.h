#pragma once

#include <string>
#include <vector>

namespace velmdiag {

/// The candidate that a mistyped word most likely stands for; empty when none is close.
std::string Suggest(const std::string& word, const std::vector<std::string>& candidates);

}  // namespace velmdiag
