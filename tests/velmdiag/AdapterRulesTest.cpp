#include "AdapterRules.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace velmdiag {
namespace {

std::string File(const std::string& fact, const std::string& is, const std::string& value) {
    return R"({"rules": [{"fact": ")" + fact + R"(", "is": ")" + is + R"(", "value": )" + value + "}]}";
}

/// What is wrong with a file; "" when nothing is.
std::string ErrorOf(const std::string& text) {
    try {
        ReadAdapterRules(text);
        return "";
    } catch (const RuleError& error) {
        return error.what();
    }
}

/// Whether the only rule of a file holds.
bool Holds(const std::string& file, velm::D3d9AdapterContext& context) {
    velm::D3d9AdapterCheckSet set;
    set.AddItem(ReadAdapterRules(file).at(0).item);
    bool passed = false;
    EXPECT_EQ(set.Check(&passed, &context), 0U) << file;
    return passed;
}

TEST(AdapterRules, EveryOperatorAndValueMeansWhatItSays) {
    velm::D3d9AdapterContext context;
    context.m_identifier.DriverVersion.QuadPart = 0x000800150000FFFFLL;
    context.m_identifier.VendorId = 0x10DE;
    context.m_identifier.DeviceId = 0xFFFFFFFF;
    context.m_identifier.DeviceIdentifier = {0xAEB2CDD4, 0x6E41, 0x43EA, {0x94, 0x1C, 1, 2, 3, 4, 5, 0x81}};
    context.m_caps.Caps2 = 0x21;
    context.m_displayMode.Width = 1280;
    const std::pair<std::string, bool> cases[] = {
        {File("vendor-name", "==", R"("NVIDIA")"), true},
        {File("driver-version", "==", R"("8.21.0.65535")"), true},
        {File("driver-version", "<=", R"("0x80015FFFF")"), false},
        {File("driver-version", ">", "-1"), true},
        {File("driver-version", "<", R"("0x8000000000000000")"), false},  // its bits are a negative number
        {File("device-id", ">=", "4294967295"), true},
        {File("device-identifier", "!=", R"("{aeb2cdd4-6e41-43ea-941c-010203040580}")"), true},
        {File("caps2", "has-none", R"("0x30")"), false},
        {File("display-width", "==", "1.28e3"), true},
    };
    for (const auto& [file, holds] : cases) {
        EXPECT_EQ(Holds(file, context), holds) << file;
    }
    EXPECT_TRUE(ReadAdapterRules(R"( {"rules": []} )").empty());
}

TEST(AdapterRules, AFactAsItIsShownMakesARuleThatHolds) {
    velm::D3d9AdapterContext context;
    context.m_identifier.DriverVersion.QuadPart = -2;
    context.m_identifier.SubSysId = 0xFEDCBA98;
    context.m_identifier.DeviceIdentifier = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 255}};
    context.m_displayMode.RefreshRate = 0xFFFFFFFF;
    for (const auto& command : velm::kD3d9AdapterCommands) {
        const std::string text = FactText(command, context);
        const bool decimal = command.type == velm::D3D9_ADAPTER_PARAM_UINT;
        for (const std::string& value :
             {decimal ? text : '"' + text + '"', FactValue(command, context).serialize()}) {
            EXPECT_TRUE(Holds(File(command.name, "==", value), context)) << command.name << ' ' << value;
        }
    }
}

TEST(AdapterRules, ABrokenFileIsRefusedInOneLine) {
    const std::string files[] = {
        "{\"rules\": [",
        "[]",
        "{}",
        R"({"rules": {}})",
        R"({"rules": []} {})",
        R"({"rules": [], "rule": []})",
        R"({"rules": [{"fact": "caps", "is": "=="}]})",
        R"({"rules": [{"fact": "caps", "is": "==", "value": 1, "vlaue": 2}]})",
        R"({"rules": [{"fact": 1, "is": "==", "value": 1}]})",
        File("\\u000a" + std::string(1000, 'y'), "==", "1"),
        File("caps", "=", "1"),
        File("vendor-name", "has-any", "\"AMD\""),
        File("vendor-name", "==", '"' + std::string(128, 'x') + '"'),
        File("vendor-name", "==", "7"),
        File("vendor-name", "==", R"("AMD\u0000")"),
        File("caps", "==", "-1"),
        File("caps", "==", "0.5"),
        File("caps", "==", "4294967296"),
        File("caps", "==", R"("0x")"),
        File("caps", "==", R"("12")"),
        File("driver-version", "==", "1e16"),
        File("driver-version", "==", R"("1.2.3")"),
        File("driver-version", "==", R"("1.2.3.4.5")"),
        File("driver-version", "==", R"("1.2.3.65536")"),
        File("driver-version", "==", R"("1..3.4")"),
        File("device-identifier", ">", "\"{AEB2CDD4-6E41-43EA-941C-010203040581}\""),
        File("device-identifier", "==", R"("{AEB2CDD4-6E41-43EA-941C-01020304058}")"),
        File("device-identifier", "==", R"("{AEB2CDD4-6E41-43EA+941C-010203040581}")"),
    };
    for (const std::string& text : files) {
        const std::string error = ErrorOf(text);
        EXPECT_NE(error, "") << text.substr(0, 200);
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_LT(error.size(), 300U) << error;
    }
    EXPECT_EQ(ErrorOf(R"({"rules": [{"fact": "caps", "is": "==", "value": 1}, {"fact": "hue"}]})"),
              "rule 2 has an unknown fact \"hue\"");
}

}  // namespace
}  // namespace velmdiag
