#include "velm/D3d9AdapterCheckSet.h"

#include <gtest/gtest.h>

#include <climits>
#include <utility>
#include <vector>

#include "FakeDirect3D9.h"

namespace velm::d3d9_adapter_check_set_test {

using Item = D3d9AdapterCheckItem;
using ItemPtr = std::tr1::shared_ptr<Item>;
using test::FakeDirect3D9;

constexpr auto kUnknownCommand = static_cast<D3d9AdapterCheckCommand>(15);

template <typename Set, typename T>
ItemPtr Rule(Set set, D3d9AdapterCheckCommand command, T value) {
    const ItemPtr item(new Item);
    (item.get()->*set)(command, D3D9_ADAPTER_COMPARE_EQUAL, value);
    return item;
}

ItemPtr Vendor(const char* name) {
    return Rule(&Item::SetAsString, D3D9_ADAPTER_CHECK_VENDOR_NAME, name);
}

ItemPtr Number(D3d9AdapterCheckCommand command, DWORD value) {
    return Rule(&Item::SetAsDWORD, command, value);
}

/// The result of a check, and the rules passed to its callback.
struct Outcome {
    unsigned int result = 0;
    bool passed = true;
    std::vector<Item*> named{};

    bool operator==(const Outcome&) const = default;
};

Outcome CheckRules(const std::vector<ItemPtr>& rules, D3d9AdapterContext context) {
    D3d9AdapterCheckSet set;
    for (const ItemPtr& rule : rules) {
        set.AddItem(rule);
    }
    Outcome outcome;
    set.BindNotifyError([](void* user, D3d9AdapterContext*,
                           ItemPtr item) { static_cast<Outcome*>(user)->named.push_back(item.get()); },
                        &outcome);
    outcome.result = set.Check(&outcome.passed, &context).GetCode();
    return outcome;
}

TEST(D3d9AdapterCheckSet, StopsAtTheFirstFailingRule) {
    const ItemPtr intel = Vendor("Intel");
    const ItemPtr amd = Vendor("AMD");
    const ItemPtr badType = Number(D3D9_ADAPTER_CHECK_VENDOR_NAME, 0x8087);
    const ItemPtr badCommand = Number(kUnknownCommand, 0);
    const ItemPtr negative = Number(static_cast<D3d9AdapterCheckCommand>(INT_MIN), 0);
    const struct {
        const char* what;
        std::vector<ItemPtr> rules;
        Outcome outcome;
    } rows[] = {
        {"no rules", {}, {0, true, {}}},
        {"the second fails", {intel, amd, badCommand}, {0, false, {amd.get()}}},
        {"wrong type", {intel, badType, amd}, {VELM_ERROR_UTIL_INVALID_PARAM, false, {badType.get()}}},
        {"unknown command", {badCommand, intel}, {VELM_ERROR_UTIL_NOT_EXIST, false, {badCommand.get()}}},
        {"negative command", {negative}, {VELM_ERROR_UTIL_NOT_EXIST, false, {negative.get()}}},
        {"empty pointer", {intel, {}, intel}, {VELM_ERROR_UTIL_INVALID_PARAM, false, {nullptr}}},
    };
    D3d9AdapterContext context;
    context.m_identifier.VendorId = 0x8087;
    for (const auto& row : rows) {
        EXPECT_TRUE(CheckRules(row.rules, context) == row.outcome) << row.what;
    }
}

// Every fact's value is the number of its command.
TEST(D3d9AdapterCheckSet, ReadsEveryFactFromItsField) {
    constexpr GUID kIdentifier = {5, 6, 7, {8}};
    D3d9AdapterContext context;
    context.m_identifier.DriverVersion.QuadPart = -0x100000000LL + 7;
    context.m_identifier.VendorId = 0x102B;
    context.m_identifier.DeviceId = 2;
    context.m_identifier.SubSysId = 3;
    context.m_identifier.Revision = 4;
    context.m_identifier.DeviceIdentifier = kIdentifier;
    context.m_identifier.WHQLLevel = 6;
    context.m_caps.Caps = 7;
    context.m_caps.Caps2 = 8;
    context.m_caps.Caps3 = 9;
    context.m_caps.PresentationIntervals = 10;
    context.m_displayMode = {11, 12, 13, static_cast<D3DFORMAT>(14)};
    for (unsigned int number = 0; number < 15; ++number) {
        SCOPED_TRACE(number);
        const auto command = static_cast<D3d9AdapterCheckCommand>(number);
        const ItemPtr rule = number == 0   ? Rule(&Item::SetAsInt64, command, -0x100000000LL + 7)
                             : number == 1 ? Vendor("Matrox")
                             : number == 5 ? Rule(&Item::SetAsGUID, command, kIdentifier)
                             : number < 11 || number == 14 ? Number(command, number)
                                                           : Rule(&Item::SetAsUINT, command, number);
        EXPECT_TRUE(CheckRules({rule}, context).passed);
        EXPECT_FALSE(CheckRules({rule}, D3d9AdapterContext()).passed);
        D3d9AdapterParamType type{};
        EXPECT_EQ(D3d9AdapterCheckSet::GetCommandType(&type, command), 0U);
        EXPECT_EQ(type, rule->GetType());
    }
    const std::pair<DWORD, const char*> vendors[] = {
        {0, "RDP"},        {0x1002, "AMD"},       {0x1022, "AMD"},   {0x10DE, "NVIDIA"},
        {0x8086, "Intel"}, {0x1414, "Microsoft"}, {0x163C, "Intel"}, {0x110DE, "Unknown"}};
    for (const auto& [id, name] : vendors) {
        context.m_identifier.VendorId = id;
        EXPECT_TRUE(CheckRules({Vendor(name)}, context).passed) << name << ' ' << id;
    }
}

TEST(D3d9AdapterContext, KeepsFactsThatCannotBeRead) {
    FakeDirect3D9 first;
    first.identifier.VendorId = 1;
    first.caps.Caps = 2;
    first.mode.Width = 3;
    FakeDirect3D9 second = first;
    second.identifier.VendorId = 11;
    second.caps.Caps = 12;
    D3d9AdapterCheckSet set;
    set.AddItem(Number(D3D9_ADAPTER_CHECK_CAPS, 12));
    D3d9AdapterContext context;
    ASSERT_EQ(context.Setup(&first, 4), 0U);
    for (const auto failFrom : {FakeDirect3D9::kIdentifier, FakeDirect3D9::kCaps, FakeDirect3D9::kMode}) {
        SCOPED_TRACE(failFrom);
        second.failFrom = failFrom;
        second.queries = 0;
        EXPECT_EQ(context.Setup(&second, 5), VELM_ERROR_UTIL_D3D9_FAILED);
        EXPECT_EQ(second.queries, failFrom + 1U) << "went on querying after a failure";
        EXPECT_EQ(context.m_pD3d9, &second);
        EXPECT_EQ(context.m_nAdapter, 5U);
        EXPECT_EQ(context.m_identifier.VendorId, failFrom > FakeDirect3D9::kIdentifier ? 11U : 1U);
        EXPECT_EQ(context.m_caps.Caps, failFrom > FakeDirect3D9::kCaps ? 12U : 2U);
        EXPECT_EQ(context.m_displayMode.Width, 3U);
        bool passed = false;
        EXPECT_EQ(set.Check(&passed, &second, 0), 0U) << "a fact that is zero counts as an error";
        EXPECT_EQ(passed, failFrom > FakeDirect3D9::kCaps);
    }
}

TEST(D3d9AdapterCheckSet, RejectsNullArguments) {
    D3d9AdapterCheckSet set;
    FakeDirect3D9 d3d;
    D3d9AdapterContext context;
    bool passed = true;
    EXPECT_EQ(set.Check(&passed, nullptr, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_FALSE(std::exchange(passed, true));
    EXPECT_EQ(set.Check(&passed, nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_FALSE(passed);
    EXPECT_EQ(set.Check(nullptr, &context), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(set.Check(nullptr, &d3d, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(context.Setup(nullptr, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    auto type = D3D9_ADAPTER_PARAM_FLOAT;
    EXPECT_EQ(set.GetCommandType(nullptr, D3D9_ADAPTER_CHECK_CAPS), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(set.GetCommandType(&type, kUnknownCommand), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(type, D3D9_ADAPTER_PARAM_FLOAT);
}

TEST(D3d9AdapterCheckSet, OwnsItemsOfBothPointerTypes) {
    const ItemPtr counted = Vendor("AMD");
    const std::shared_ptr<Item> standard(new Item);
    {
        D3d9AdapterCheckSet set;
        set.AddItem(counted);
        set.AddItem(standard);
        EXPECT_EQ(counted.use_count(), 2);
        EXPECT_GT(standard.use_count(), 1);
    }
    EXPECT_EQ(counted.use_count(), 1);
    EXPECT_EQ(standard.use_count(), 1);
}

}  // namespace velm::d3d9_adapter_check_set_test
