#include <windows.h>
#include <gtest/gtest.h>

#include <cstring>

#include "TemporaryFile.h"
#include "velm/WindowsUtil.h"

namespace velm::windows_util_calls_test {

TEST(WindowsUtilCalls, ReadsProfilesByUtf8Names) {
    const char* const path = "./profile.ini";
    const test::TemporaryFile file(path, "[numbers]\r\nminus=-7\r\n[texts]\r\nlong=value\r\n");
    wchar_t value[40];
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt("numbers", "minus", 1, path), 0xFFFFFFF9U);
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "none", "\xC3\xA4", value, 40, path), 1U);
    EXPECT_STREQ(value, L"\u00E4");
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "long", "", value, 5, path), 4U);
    EXPECT_STREQ(value, L"valu");
}

TEST(WindowsUtilCalls, WritesModuleFileNamesThatFit) {
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

TEST(WindowsUtilPaths, AreBesideTheExecutable) {
    char executable[1000];
    ASSERT_NE(WindowsUtil::CallGetModuleFileName(nullptr, executable, sizeof executable), 0U);
    std::string folder(executable);
    folder.replace(folder.find_last_of("\\/"), std::string::npos, "\\");
    std::string path = "b.png";
    EXPECT_EQ(WindowsUtil::GetFullPathForResourcesDirFile(path, path), 0U);
    EXPECT_EQ(path, folder + "resources\\b.png");
    EXPECT_EQ(WindowsUtil::GetFullPathForResourcesDir(path), 0U);
    EXPECT_EQ(path, folder + "resources\\");
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(path, "a.txt"), 0U);
    EXPECT_EQ(path, folder + "a.txt");
    for (const std::size_t size : {std::size_t{1}, path.size(), path.size() + 1}) {
        SCOPED_TRACE(size);
        const bool fits = size > path.size();
        std::string buffer(size + 1, '?');
        EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(buffer.data(), size, "a.txt"),
                  fits ? 0U : VELM_ERROR_UTIL_DATA_LENGTH);
        EXPECT_EQ(buffer, fits ? path + '\0' + '?' : std::string(size + 1, '?'));
    }
}

TEST(WindowsUtilPaths, RejectMissingArguments) {
    char buffer[4] = "abc";
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(buffer, 0, "a"), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(buffer, 4, nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(nullptr, 4, "a"), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_STREQ(buffer, "abc");
    int size = -1;
    EXPECT_EQ(WindowsUtil::GetMaxScreenSize(nullptr, &size, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(WindowsUtil::GetMaxScreenSize(&size, nullptr, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(size, -1);
}

}  // namespace velm::windows_util_calls_test
