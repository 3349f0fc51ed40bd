#include "velm/D3d9AdapterRules.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"

namespace velm::test {
namespace {

std::string Rules(const std::string& fact, const std::string& is, const std::string& value) {
    return R"({"rules": [{"fact": ")" + fact + R"(", "is": ")" + is + R"(", "value": )" + value + "}]}";
}

/// "LINE:COLUMN: MESSAGE" for an invalid text; "" for a valid one.
std::string ErrorOf(const std::string& text) {
    D3d9AdapterRules rules;
    if (!rules.Read(text.data(), text.size()).IsFailed()) {
        EXPECT_STREQ(rules.GetErrorMessage(), "");
        return "";
    }
    EXPECT_EQ(rules.GetCount(), 0U);
    return std::to_string(rules.GetErrorLine()) + ':' + std::to_string(rules.GetErrorColumn()) + ": " +
           rules.GetErrorMessage();
}

/// Whether the text's only rule holds.
bool Holds(const std::string& text, D3d9AdapterContext& context) {
    D3d9AdapterRules rules;
    EXPECT_EQ(rules.Read(text.data(), text.size()), 0U) << text << rules.GetErrorMessage();
    EXPECT_EQ(rules.GetCount(), 1U);
    D3d9AdapterCheckSet set;
    bool passed = false;
    EXPECT_EQ(rules.AddTo(&set), 0U);
    EXPECT_EQ(set.Check(&passed, &context), 0U) << text;
    return passed;
}

TEST(AdapterRules, ReadsAllOperatorsAndKindsOfValues) {
    D3d9AdapterContext context;
    context.m_identifier.DriverVersion.QuadPart = 0x000800150000FFFFLL;
    context.m_identifier.VendorId = 0x10DE;
    context.m_identifier.DeviceId = 0xFFFFFFFF;
    context.m_identifier.DeviceIdentifier = {0xAEB2CDD4, 0x6E41, 0x43EA, {0x94, 0x1C, 1, 2, 3, 4, 5, 0x81}};
    context.m_caps.Caps2 = 0x21;
    context.m_displayMode.Width = 1280;
    const std::pair<std::string, bool> cases[] = {
        {Rules("vendor-name", "==", R"("NVIDIA")"), true},
        {Rules("driver-version", "==", R"("8.21.0.65535")"), true},
        {Rules("driver-version", "<=", R"("0x80015FFFF")"), false},
        {Rules("driver-version", ">", "-1"), true},
        {Rules("driver-version", "<", R"("0x8000000000000000")"),
         false},  // negative: the bits of a signed number
        {Rules("device-id", ">=", "4294967295"), true},
        {Rules("device-identifier", "!=", R"("{aeb2cdd4-6e41-43ea-941c-010203040580}")"), true},
        {Rules("caps2", "has-none", R"("0x30")"), false},
        {Rules("display-width", "==", "1.28e3"), true},
        {Rules("display-width", "==", "128000.00e-2"), true},
        {Rules("display-width", ">", "0e-99999"), true},
        {Rules("driver-version", "<", "9007199254740992"), true},
        {"\xEF\xBB\xBF" + Rules("vendor-name", "!=", R"("\u0041\u00e4\u20ac\ud83d\ude00\t")"), true},
    };
    for (const auto& [file, holds] : cases) {
        EXPECT_EQ(Holds(file, context), holds) << file;
    }
    EXPECT_EQ(ErrorOf(R"( {"rules": []} )"), "");
}

TEST(AdapterRules, FormattedFactsWorkAsRuleValues) {
    D3d9AdapterContext context;
    context.m_identifier.DriverVersion.QuadPart = -2;
    context.m_identifier.SubSysId = 0xFEDCBA98;
    context.m_identifier.DeviceIdentifier = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 255}};
    context.m_displayMode.RefreshRate = 0xFFFFFFFF;
    int facts = 0;
    for (; D3d9AdapterRules::GetFactName(static_cast<D3d9AdapterCheckCommand>(facts)) != nullptr; ++facts) {
        const auto command = static_cast<D3d9AdapterCheckCommand>(facts);
        const std::string name = D3d9AdapterRules::GetFactName(command);
        D3d9AdapterParamType type{};
        std::string text;
        EXPECT_EQ(D3d9AdapterCheckSet::GetCommandType(&type, command), 0U);
        EXPECT_EQ(D3d9AdapterRules::GetFactText(text, &context, command), 0U);
        const std::string value = type == D3D9_ADAPTER_PARAM_UINT ? text : '"' + text + '"';
        EXPECT_TRUE(Holds(Rules(name, "==", value), context)) << name << ' ' << value;
    }
    EXPECT_EQ(facts, 15);
}

TEST(AdapterRules, RejectsInvalidTextWithOneLineErrors) {
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
        Rules("\\u000a" + std::string(1000, 'y'), "==", "1"),
        Rules("caps", "=", "1"),
        Rules("vendor-name", "has-any", "\"AMD\""),
        Rules("vendor-name", "==", '"' + std::string(128, 'x') + '"'),
        Rules("vendor-name", "==", "7"),
        Rules("vendor-name", "==", R"("AMD\u0000")"),
        Rules("caps", "==", "-1"),
        Rules("caps", "==", "0.5"),
        Rules("caps", "==", "01"),
        Rules("caps", "==", "1."),
        Rules("caps", "==", "1e+-1"),
        Rules("caps", "==", "true"),
        Rules("caps", "==", "4294967296"),
        Rules("caps", "==", R"("0x")"),
        Rules("caps", "==", R"("12")"),
        Rules("driver-version", "==", "1e16"),
        Rules("driver-version", "==", R"("1.2.3")"),
        Rules("driver-version", "==", R"("1.2.3.4.5")"),
        Rules("driver-version", "==", R"("1.2.3.65536")"),
        Rules("driver-version", "==", R"("1..3.4")"),
        Rules("device-identifier", ">", "\"{AEB2CDD4-6E41-43EA-941C-010203040581}\""),
        Rules("device-identifier", "==", R"("{AEB2CDD4-6E41-43EA-941C-01020304058}")"),
        Rules("device-identifier", "==", R"("{AEB2CDD4-6E41-43EA+941C-010203040581}")"),
    };
    for (const std::string& text : files) {
        const std::string error = ErrorOf(text);
        EXPECT_NE(error, "") << text.substr(0, 200);
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
        EXPECT_LT(error.size(), 300U) << error;
    }
}

TEST(AdapterRules, ReportsTheLineAndColumnOfErrors) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "1:1: expected {"},
        {"\xEF\xBB\xBF{\n\"r\xC3\xBCl\" 1", "2:7: expected :"},
        {R"({"rules": [{"fact": "caps", "is": "==", "value": 1},)"
         "\r\n"
         R"( {"fact": "hue", "is": "==", "value": 1}]})",
         "2:11: rule 2: unknown fact \"hue\""},
        {R"({"rules": [{"fact": "caps"}]})", "1:12: rule 1: no member \"is\""},
        {R"({"rules": [{"fact": "caps", "fact": "caps2"}]})", "1:29: rule 1: second member \"fact\""},
        {R"({"rules": [{"fact": ["caps"]}]})", "1:21: rule 1: expected a string or a number"},
        {R"({"rules": [], "rules": []})", "1:15: unexpected member \"rules\""},
        {"{\"rules\": [\x01]}", "1:12: unexpected character"},
        {R"({"\q": 1})", "1:3: unknown escape"},
        {R"({"\ud83d\u0041": 1})", "1:3: invalid \\u"},
        {"{\"rules", "1:2: string without an end"},
        {std::string(1024 * 1024 + 1, ' '), "0:0: larger than 1 MiB"},
    };
    for (const auto& [text, error] : cases) {
        EXPECT_EQ(ErrorOf(text), error);
    }
}

TEST(AdapterRules, ReadsFilesAndFormatsTheirRules) {
    const TemporaryFile file("r\xC3\xBCles.json", Rules("caps", "has-any", "\"0x1\""));
    D3d9AdapterRules rules;
    ASSERT_EQ(rules.ReadFile(file.Name()), 0U);
    EXPECT_STREQ(rules.GetText(0), "caps has-any \"0x1\"");
    EXPECT_EQ(rules.GetItem(0)->AsDWORD(), 1U);
    EXPECT_EQ(rules.GetText(1), nullptr);
    EXPECT_EQ(rules.GetItem(1), nullptr);
    EXPECT_EQ(rules.ReadFile("no-such-rules.json"), VELM_ERROR_CORE_NOT_EXIST);
    EXPECT_EQ(rules.GetCount(), 0U);
}

}  // namespace
}  // namespace velm::test
