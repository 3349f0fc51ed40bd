// Reads the input as a rule file. Every accepted rule must be checkable, and a set must pass exactly if each
// of its rules does.
#include "AdapterRules.h"
#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<velmdiag::AdapterRule> rules;
    try {
        rules = velmdiag::ReadAdapterRules(TextOf(data, size));
    } catch (const velmdiag::RuleError& error) {
        VELM_FUZZ_DEMAND(std::string(error.what()).find('\n') == std::string::npos);
        return 0;
    }
    velm::D3d9AdapterContext context;
    velm::D3d9AdapterCheckSet all;
    bool allPass = true;
    bool passed = false;
    for (const velmdiag::AdapterRule& rule : rules) {
        all.AddItem(rule.item);
        velm::D3d9AdapterCheckSet one;
        one.AddItem(rule.item);
        VELM_FUZZ_DEMAND(one.Check(&passed, &context) == 0U);
        allPass = allPass && passed;
    }
    VELM_FUZZ_DEMAND(all.Check(&passed, &context) == 0U && passed == allPass);
    return 0;
}
