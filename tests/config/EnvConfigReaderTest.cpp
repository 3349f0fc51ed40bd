#include "velm/EnvConfigReader.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace velm {
namespace {

std::string Read(const std::string& name) {
    std::string value = "old";
    EnvConfigReader().GetIfOk(name, value);
    return value;
}

TEST(EnvConfigReader, VariablesAreNotTakenForOneAnother) {
    ASSERT_TRUE(SetEnvironmentVariableW(L"VELM_TEST", L"a=b \x20AC\xD83D\xDE00"));
    ASSERT_TRUE(SetEnvironmentVariableW(L"VELM_TEST_EMPTY", L""));
    ASSERT_TRUE(SetEnvironmentVariableW(L"VELM_TEST_\xE9", L"accent"));
    const std::pair<std::string, std::string> rows[] = {
        {std::string("velm_Test\0x", 11), "a=b \xE2\x82\xAC\xF0\x9F\x98\x80"},
        {"VELM_TEST_EMPTY", ""},  // set but empty is not missing
        {"VELM_TEST_NONE", "old"},
        {"VELM_TEST_\x82", "accent"},   // the letter in code page 437
        {"VELM_TEST_\xC3\xA9", "old"},  // and in UTF-8, which is not that of names
    };
    for (const auto& [name, value] : rows) {
        EXPECT_EQ(Read(name), value) << name;
    }
}

TEST(EnvConfigReader, AValueThatChangesIsReadWhole) {
    const std::wstring longValue(5000, L'l');
    ASSERT_TRUE(SetEnvironmentVariableW(L"VELM_TEST_RACE", L"short"));
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (int i = 0; !stop; ++i) {
            SetEnvironmentVariableW(L"VELM_TEST_RACE", i % 2 == 0 ? longValue.c_str() : L"short");
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const std::string value = Read("VELM_TEST_RACE");
        EXPECT_TRUE(value == "short" || value == std::string(5000, 'l')) << value;
    }
    stop = true;
    writer.join();
}

}  // namespace
}  // namespace velm
