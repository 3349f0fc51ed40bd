#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "velm/WindowsUtil.h"

namespace velm {
namespace {

TEST(WindowsUtilPaths, FilesLieBesideTheExecutable) {
    char executable[1000];
    ASSERT_NE(WindowsUtil::CallGetModuleFileName(nullptr, executable, sizeof executable), 0U);
    std::string folder(executable);
    folder.erase(folder.find_last_of("\\/"));
    std::string path = "b.png";
    EXPECT_EQ(WindowsUtil::GetFullPathForResourcesDirFile(path, path), 0U);
    EXPECT_EQ(path, folder + "\\resources\\b.png");
    path = "a.txt";
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(path, path), 0U);
    EXPECT_EQ(path, folder + "\\a.txt");
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(path, ""), 0U);
    EXPECT_EQ(path, folder + "\\");
    EXPECT_EQ(WindowsUtil::GetFullPathForResourcesDir(path), 0U);
    EXPECT_EQ(path, folder + "\\resources\\");
}

TEST(WindowsUtilPaths, TheBufferFormNeverWritesPastItsSize) {
    std::string path;
    ASSERT_EQ(WindowsUtil::GetFullPathForExecDirFile(path, "a.txt"), 0U);
    for (std::size_t size = 1; size <= path.size() + 3; ++size) {
        SCOPED_TRACE(size);
        const bool fits = size > path.size();
        std::vector<char> buffer(size, '?');
        EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(buffer.data(), size, "a.txt"),
                  fits ? 0U : VELM_ERROR_UTIL_DATA_LENGTH);
        std::string expected(size, '?');
        if (fits) {
            expected.replace(0, path.size() + 1, path.c_str(), path.size() + 1);
        }
        EXPECT_EQ(std::string(buffer.data(), size), expected);
    }
    char buffer[4] = "abc";
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(buffer, 0, "a"), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(buffer, 4, nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(WindowsUtil::GetFullPathForExecDirFile(nullptr, 4, "a"), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_STREQ(buffer, "abc");
}

TEST(WindowsUtilPaths, TheScreenSizeNeedsBothResults) {
    int size = -1;
    EXPECT_EQ(WindowsUtil::GetMaxScreenSize(nullptr, &size, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(WindowsUtil::GetMaxScreenSize(&size, nullptr, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(size, -1);
}

}  // namespace
}  // namespace velm
