#pragma once

#include "graphics/AdapterRuleTokens.h"
#include "graphics/D3d9AdapterCommand.h"

namespace velm {

/// Sets an item from the value of a rule.
/// @return null; what the type needs instead, when the value is not one of the fact's type
const char* SetAdapterRuleValue(D3d9AdapterCheckItem& item, const D3d9AdapterCommand& command,
                                D3d9AdapterParamCompare compare, const AdapterRuleToken& value);

/// Formats a fact as SetAdapterRuleValue takes it, without quotes.
/// Throws std::bad_alloc when out of memory.
std::string FormatAdapterFact(const D3d9AdapterCommand& command, const D3d9AdapterContext& context);

}  // namespace velm
