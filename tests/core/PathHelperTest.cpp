#include "velm/core/PathHelper.h"

#include <gtest/gtest.h>

#include <string>

#include "velm/core/CoreErrorCode.h"

namespace velm {
namespace {

TEST(PathHelper, DirectoryEndsBeforeTheLastSeparator) {
    const char* const cases[][2] = {{"D:\\a.exe", "D:"},      {"/a", ""}, {"a.exe", "."},
                                    {"C:/x\\y/z", "C:/x\\y"}, {"", "."},  {"dir\\", "dir"},
                                    {"a/\\/b", "a"},          {"//b", ""}};
    for (const auto& [path, directory] : cases) {
        char out[260];
        ASSERT_EQ(PathHelper::GetFileDir(out, sizeof out, path), 0U) << path;
        EXPECT_STREQ(out, directory) << path;
    }
}

TEST(PathHelper, DirectoryNeverLeavesItsBuffer) {
    const std::string path = "D:\\app\\a.exe";  // whose directory takes 6 bytes and a NUL
    for (std::size_t size = 0; size <= 8; ++size) {
        std::string out(9, '#');
        const ErrorCode result = PathHelper::GetFileDir(out.data(), size, path.c_str());
        EXPECT_EQ(result.IsFailed(), size < 7) << size;
        EXPECT_EQ(out, result.IsFailed() ? std::string(9, '#') : std::string("D:\\app\0##", 9)) << size;
    }
    char out[4];
    EXPECT_EQ(PathHelper::GetFileDir(nullptr, 4, "a"), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(PathHelper::GetFileDir(out, 4, nullptr), VELM_ERROR_CORE_INVALID_PARAM);
}

}  // namespace
}  // namespace velm
