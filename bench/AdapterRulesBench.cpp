// The cost of checking a set of rules must be proportional to their number, so the peer is one rule, checked
// that many times.
#include <memory>
#include <string>

#include "Families.h"
#include "velm/D3d9AdapterCheckSet.h"

namespace velm::bench {
namespace {

/// Rules that all hold, with DWORD, string and int64 operands.
D3d9AdapterCheckSet MakeRules(std::size_t count) {
    D3d9AdapterCheckSet set;
    for (std::size_t i = 0; i < count; ++i) {
        const std::tr1::shared_ptr<D3d9AdapterCheckItem> item(new D3d9AdapterCheckItem);
        switch (i % 3) {
            case 0:
                item->SetAsDWORD(D3D9_ADAPTER_CHECK_DEVICE_ID, D3D9_ADAPTER_COMPARE_EQUAL, 0);
                break;
            case 1:
                item->SetAsString(D3D9_ADAPTER_CHECK_VENDOR_NAME, D3D9_ADAPTER_COMPARE_NOT_EQUAL, "Other");
                break;
            default:
                item->SetAsInt64(D3D9_ADAPTER_CHECK_DRIVER_VERSION, D3D9_ADAPTER_COMPARE_GREATER_EQUAL, 0);
        }
        set.AddItem(item);
    }
    return set;
}

Contender Check(std::string name, std::size_t rules, D3d9AdapterContext& context, std::size_t times) {
    const auto set = std::make_shared<D3d9AdapterCheckSet>(MakeRules(rules));
    return Repeat(
        std::move(name),
        [set, &context, times] {
            for (std::size_t i = 0; i < times; ++i) {
                bool passed = false;
                set->Check(&passed, &context);
                Keep(passed);
            }
        },
        rules < kShort ? kShort : 1);
}

}  // namespace

void MeasureAdapterRules(Suite& suite) {
    D3d9AdapterContext context;
    constexpr std::size_t kRules[] = {10, 100, 1000, 10000};
    for (const std::size_t rules : kRules) {
        const std::string times = std::to_string(rules);
        suite.Compare("Adapter rules", "checking " + times + " rules",
                      Check(times + " rules", rules, context, 1),
                      {{Check("checking one rule " + times + " times", 1, context, rules), 0.85}});
    }
    suite.MeasureCurve(
        "Adapter rules: a check", "rules", Growth::kWithSize, {1, 10, 100, 1000, 10000},
        [&context](double rules) -> std::vector<Contender> {
            return {Check("D3d9AdapterCheckSet", static_cast<std::size_t>(rules), context, 1)};
        },
        100);
}

}  // namespace velm::bench
