/// @file
/// Rule files: {"rules": [{"fact": "vendor-name", "is": "==", "value": "NVIDIA"}, ...]}
#pragma once

#include <picojson.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "graphics/D3d9AdapterCommand.h"
#include "velm/D3d9AdapterCheckSet.h"

namespace velmdiag {

struct AdapterRule {
    std::string text;  ///< such as: vendor-name == "NVIDIA"
    std::tr1::shared_ptr<velm::D3d9AdapterCheckItem> item;
};

/// What is wrong with a rule file, in one line.
struct RuleError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads the text of a rule file. Every rule that comes back can be checked: its fact is known, its operator
/// suits the fact, and its value has the fact's type and fits it. Throws RuleError otherwise.
std::vector<AdapterRule> ReadAdapterRules(const std::string& text);

/// The entry of the command that an item is about.
const velm::D3d9AdapterCommand& CommandOf(velm::D3d9AdapterCheckItem& item);

/// A fact in a form that rule files take, for programs and for people.
picojson::value FactValue(const velm::D3d9AdapterCommand& command, const velm::D3d9AdapterContext& context);
std::string FactText(const velm::D3d9AdapterCommand& command, const velm::D3d9AdapterContext& context);

/// The names of all facts and operators, in two lines.
std::string HelpOnRules();

}  // namespace velmdiag
