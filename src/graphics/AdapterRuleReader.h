#pragma once

#include <vector>

#include "graphics/AdapterRuleTokens.h"
#include "velm/D3d9AdapterCheckSet.h"

namespace velm {

struct AdapterRule {
    std::string text;  ///< such as: vendor-name == "NVIDIA"
    std::tr1::shared_ptr<D3d9AdapterCheckItem> item;
};

/// Reads rules from JSON; see D3d9AdapterRules.
/// @param rules  out: the rules are appended; after an error, those that precede it
/// @param error  out: set on failure
/// @return whether the text is valid
/// Throws std::bad_alloc when out of memory.
bool ReadAdapterRules(std::string_view text, std::vector<AdapterRule>& rules, AdapterRuleError& error);

}  // namespace velm
