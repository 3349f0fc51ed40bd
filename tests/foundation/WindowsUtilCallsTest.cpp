#include <windows.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "MessageLoop.h"
#include "TemporaryFile.h"
#include "velm/WindowsUtil.h"

namespace velm {
namespace {

TEST(WindowsUtilCalls, ALongWindowTextArrivesWhole) {
    const UniqueWindow window = MakeWindow();
    ASSERT_NE(window, nullptr);
    const std::string text = std::string(30'000, 'x') + "\xF0\x9F\x98\x80";
    EXPECT_NE(WindowsUtil::CallSetWindowText(window.get(), text.c_str()), 0);
    std::vector<wchar_t> shown(100'000);
    GetWindowTextW(window.get(), shown.data(), 100'000);
    EXPECT_EQ(shown.data(), std::wstring(30'000, L'x') + L"\xD83D\xDE00");
}

TEST(WindowsUtilCalls, ProfileValuesComeFromUtf8Names) {
    const char* const path = "./profile.ini";
    const test::TemporaryFile file(
        path, "[numbers]\r\nminus=-7\r\n[texts]\r\nlong=" + std::string(3'000, 'y') + "\r\n");
    wchar_t value[4'000];
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt("numbers", "minus", 1, path), 0xFFFFFFF9U);
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "long", "", value, 4'000, path), 3'000U);
    EXPECT_EQ(value[2'999], L'y');
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "none", "\xC3\xA4", value, 4'000, path), 1U);
    EXPECT_STREQ(value, L"\u00E4");
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "long", "", value, 5, path), 4U);
}

TEST(WindowsUtilCalls, ClassNamesFitOrGiveNothing) {
    const UniqueWindow window = MakeWindow(L"STATIC");
    // The wide name is cut to size - 1 units before it is converted.
    for (const auto& [size, result] : {std::pair{-1, 0}, {0, 0}, {1, 0}, {2, 1}, {6, 5}, {7, 6}, {8, 6}}) {
        SCOPED_TRACE(size);
        char buffer[9] = "????????";
        EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer, size), result);
        EXPECT_EQ(std::string(buffer + result), std::string(static_cast<std::size_t>(8 - result), '?'));
    }
    std::vector<char> large(1 << 20);
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), large.data(), 1 << 20), 6);
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), nullptr, 20), 0);
}

TEST(WindowsUtilCalls, ModuleFileNamesFitOrGiveNothing) {
    char whole[1000];
    const unsigned long length = WindowsUtil::CallGetModuleFileName(nullptr, whole, sizeof whole);
    ASSERT_GT(length, 4U);
    EXPECT_EQ(std::strlen(whole), length);
    EXPECT_NE(std::strstr(whole, "foundation_test"), nullptr) << whole;

    std::string buffer(length + 2, '?');
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length + 1), length);
    EXPECT_STREQ(buffer.data(), whole);
    buffer.assign(length + 2, '?');
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length), length);
    EXPECT_EQ(buffer, std::string(whole, length - 1) + '\0' + "??") << "the NUL replaces the last byte";
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length - 1), 0U);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), 0), 0U);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, nullptr, 100), 0U);
}

}  // namespace
}  // namespace velm
