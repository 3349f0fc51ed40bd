#pragma once

#include "graphics/AdapterRuleTokens.h"
#include "graphics/D3d9AdapterCommand.h"

namespace velm {

/// Sets an item from a rule's value.
/// @return null on success; otherwise what a value of the fact's type looks like, for an error message
const char* SetAdapterRuleValue(D3d9AdapterCheckItem& item, const D3d9AdapterCommand& command,
                                D3d9AdapterParamCompare compare, const AdapterRuleToken& value);

/// Formats a fact the way SetAdapterRuleValue reads it, but without quotes.
/// Throws std::bad_alloc when out of memory.
std::string FormatAdapterFact(const D3d9AdapterCommand& command, const D3d9AdapterContext& context);

}  // namespace velm
