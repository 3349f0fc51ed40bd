// Reads the input as a rule file. Every accepted rule must be checkable, and a set must pass exactly if each
// of its rules does.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "AdapterRules.h"

namespace {

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<velmdiag::AdapterRule> rules;
    try {
        rules = velmdiag::ReadAdapterRules(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const velmdiag::RuleError& error) {
        Require(std::string(error.what()).find('\n') == std::string::npos);
        return 0;
    }
    velm::D3d9AdapterContext context;
    velm::D3d9AdapterCheckSet all;
    bool allPass = true;
    for (const velmdiag::AdapterRule& rule : rules) {
        all.AddItem(rule.item);
        velm::D3d9AdapterCheckSet one;
        one.AddItem(rule.item);
        bool passed = false;
        Require(!one.Check(&passed, &context).IsFailed());
        allPass = allPass && passed;
    }
    bool passed = false;
    Require(!all.Check(&passed, &context).IsFailed());
    Require(passed == allPass);
    return 0;
}
