#pragma once

#include <vector>

#include "graphics/AdapterRuleTokens.h"
#include "velm/D3d9AdapterCheckSet.h"

namespace velm {

struct AdapterRule {
    std::string text;  ///< such as: vendor-name == "NVIDIA"
    std::tr1::shared_ptr<D3d9AdapterCheckItem> item;
};

/// Reads a rules text; see D3d9AdapterRules.
/// @param rules  out: appended to, also before an error
/// @param error  out: set on failure
/// @return whether the text is one of rules
/// Throws std::bad_alloc when out of memory.
bool ReadAdapterRules(std::string_view text, std::vector<AdapterRule>& rules, AdapterRuleError& error);

}  // namespace velm
