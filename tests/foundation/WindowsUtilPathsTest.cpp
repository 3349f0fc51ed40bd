#include <gtest/gtest.h>

#include <string>

#include "velm/WindowsUtil.h"

namespace velm {
namespace {

TEST(WindowsUtilPaths, FilesLieBesideTheExecutable) {
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

TEST(WindowsUtilPaths, NothingIsWrittenWhenAnArgumentIsMissing) {
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

}  // namespace
}  // namespace velm
