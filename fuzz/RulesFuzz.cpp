// Reads the input as rules about adapters. Every accepted rule must be checkable, and a set must pass if and
// only if each of its rules does. The position of an error must be within the text.
#include <algorithm>

#include "Fuzz.h"
#include "velm/D3d9AdapterRules.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = TextOf(data, size);
    velm::D3d9AdapterRules rules;
    if (rules.Read(text.data(), text.size()).IsFailed()) {
        VELM_FUZZ_DEMAND(std::string(rules.GetErrorMessage()).find('\n') == std::string::npos);
        VELM_FUZZ_DEMAND(rules.GetErrorLine() <= 1U + std::count(text.begin(), text.end(), '\n'));
        VELM_FUZZ_DEMAND(rules.GetErrorColumn() <= text.size() + 1);
        return 0;
    }
    velm::D3d9AdapterContext context;
    velm::D3d9AdapterCheckSet all;
    VELM_FUZZ_DEMAND(rules.AddTo(&all) == 0U);
    bool allPass = true;
    bool passed = false;
    for (unsigned int i = 0; i < rules.GetCount(); ++i) {
        velm::D3d9AdapterCheckSet one;
        one.AddItem(rules.GetItem(i));
        VELM_FUZZ_DEMAND(one.Check(&passed, &context) == 0U);
        allPass = allPass && passed;
    }
    VELM_FUZZ_DEMAND(all.Check(&passed, &context) == 0U && passed == allPass);
    return 0;
}
