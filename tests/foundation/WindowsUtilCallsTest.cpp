#include <windows.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "MessageLoop.h"
#include "TemporaryFile.h"
#include "velm/WindowsUtil.h"

namespace velm {
namespace {

TEST(WindowsUtilCalls, ProfileValuesComeFromUtf8Names) {
    const char* const path = "./profile.ini";
    const test::TemporaryFile file(path, "[numbers]\r\nminus=-7\r\n[texts]\r\nlong=value\r\n");
    wchar_t value[40];
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt("numbers", "minus", 1, path), 0xFFFFFFF9U);
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "none", "\xC3\xA4", value, 40, path), 1U);
    EXPECT_STREQ(value, L"\u00E4");
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "long", "", value, 5, path), 4U);
    EXPECT_STREQ(value, L"valu");
}

TEST(WindowsUtilCalls, ClassNamesFitOrGiveNothing) {
    const test::UniqueWindow window = test::MakeWindow(L"STATIC");
    // The wide name is cut to size - 1 units before it is converted.
    for (const auto& [size, result] : {std::pair{-1, 0}, {0, 0}, {1, 0}, {2, 1}, {7, 6}, {8, 6}}) {
        SCOPED_TRACE(size);
        char buffer[9] = "????????";
        EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer, size), result);
        EXPECT_EQ(std::string(buffer + result), std::string(static_cast<std::size_t>(8 - result), '?'));
    }
}

TEST(WindowsUtilCalls, ModuleFileNamesFitOrGiveNothing) {
    char whole[1000];
    const unsigned long length = WindowsUtil::CallGetModuleFileName(nullptr, whole, sizeof whole);
    EXPECT_EQ(std::strlen(whole), length);
    EXPECT_NE(std::strstr(whole, "foundation_test"), nullptr) << whole;
    std::string buffer(length + 2, '?');
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length), length);
    EXPECT_EQ(buffer, std::string(whole, length - 1) + '\0' + "??") << "the NUL replaces the last byte";
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length + 1), length);
    EXPECT_STREQ(buffer.data(), whole);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length - 1), 0U);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), 0), 0U);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, nullptr, 100), 0U);
}

}  // namespace
}  // namespace velm
