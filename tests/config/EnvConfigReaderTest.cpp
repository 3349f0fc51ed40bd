#include "velm/EnvConfigReader.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

namespace velm::env_config_reader_test {

std::string Read(const std::string& name) {
    std::string value = "old";
    EnvConfigReader().GetIfOk(name, value);
    return value;
}

TEST(EnvConfigReader, FindsVariablesByName) {
    ASSERT_EQ(_wputenv(L"VELM_TEST=a=b \x20AC\xD83D\xDE00"), 0);
    ASSERT_EQ(_wputenv(L"VELM_TEST_GONE=x"), 0);
    ASSERT_EQ(_wputenv(L"VELM_TEST_GONE="), 0);
    ASSERT_EQ(_wputenv(L"VELM_TEST_\xE9=accent"), 0);
#if !defined(_MSC_VER)  // whose runtime copies the environment and has no empty variables
    ASSERT_TRUE(SetEnvironmentVariableW(L"VELM_TEST_EMPTY", L""));
    EXPECT_EQ(Read("VELM_TEST_EMPTY"), "") << "took set but empty for missing";
#endif
    const std::pair<std::string, std::string> rows[] = {
        {std::string("velm_Test\0x", 11), "a=b \xE2\x82\xAC\xF0\x9F\x98\x80"},
        {"VELM_TEST_GONE", "old"},
        {"VELM_TEST_\x82", "accent"},   // in code page 437
        {"VELM_TEST_\xC3\xA9", "old"},  // in UTF-8, which names do not use
    };
    for (const auto& [name, value] : rows) {
        EXPECT_EQ(Read(name), value) << name;
    }
}

#if !defined(_MSC_VER)  // whose runtime reads the value itself, under Wine without a lock
TEST(EnvConfigReader, NeverMixesOldAndNewValues) {
    const std::wstring longEntry = L"VELM_TEST_RACE=" + std::wstring(5000, L'l');
    ASSERT_EQ(_wputenv(L"VELM_TEST_RACE=short"), 0);
    std::atomic<bool> stop{false};
    std::thread writer([&] {
        for (int i = 0; !stop; ++i) {
            _wputenv(i % 2 == 0 ? longEntry.c_str() : L"VELM_TEST_RACE=short");
        }
    });
    for (int i = 0; i < 2000; ++i) {
        const std::string value = Read("VELM_TEST_RACE");
        EXPECT_TRUE(value == "short" || value == std::string(5000, 'l')) << value;
    }
    stop = true;
    writer.join();
}
#endif

}  // namespace velm::env_config_reader_test
