#include "velm/core/PathHelper.h"

#include <gtest/gtest.h>

#include "velm/core/CoreErrorCode.h"

namespace velm::path_helper_test {

TEST(PathHelper, FindsTheDirectory) {
    const char* const cases[][2] = {
        {"D:\\a.exe", "D:"}, {"/a", ""}, {"a.exe", "."}, {"C:/x\\y/z", "C:/x\\y"}, {"a/\\/b", "a"}};
    for (const auto& [path, directory] : cases) {
        char out[260];
        ASSERT_EQ(PathHelper::GetFileDir(out, sizeof out, path), 0U) << path;
        EXPECT_STREQ(out, directory) << path;
    }
}

TEST(PathHelper, NeverWritesPastTheBuffer) {
    const std::string path = "D:\\app\\a.exe";  // its directory takes 6 bytes and a NUL
    for (std::size_t size = 0; size <= 8; ++size) {
        std::string out(9, '#');
        const ErrorCode result = PathHelper::GetFileDir(out.data(), size, path.c_str());
        EXPECT_EQ(result, size == 0  ? VELM_ERROR_CORE_INVALID_PARAM
                          : size < 7 ? VELM_ERROR_CORE_DATA_LENGTH
                                     : 0U);
        EXPECT_EQ(out, result.IsFailed() ? std::string(9, '#') : std::string("D:\\app\0##", 9)) << size;
    }
    char out[4];
    EXPECT_EQ(PathHelper::GetFileDir(nullptr, 4, "a"), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(PathHelper::GetFileDir(out, 4, nullptr), VELM_ERROR_CORE_INVALID_PARAM);
}

// Up to 512 units are converted on the stack.
TEST(PathHelper, ConvertsAnyLengthAndEmbeddedNuls) {
    for (const std::size_t size : {0U, 1U, 512U, 513U, 5000U}) {
        SCOPED_TRACE(size);
        std::wstring wide = L"old";
        EXPECT_EQ(PathHelper::GetWstringFromOemcpString(std::string(size, '\0'), wide), 0U);
        EXPECT_EQ(wide, std::wstring(size, L'\0'));
        EXPECT_EQ(PathHelper::GetWstringFromUtf8String(std::string(size, 'x') + "\xC3\xA9", wide), 0U);
        EXPECT_EQ(wide, std::wstring(size, L'x') + L'\u00E9');
        EXPECT_EQ(PathHelper::GetWstringFromString(12345, "a", wide), VELM_ERROR_CORE_INVALID_PARAM);
        EXPECT_EQ(wide.size(), size + 1) << "changed by a failure";
    }
}

}  // namespace velm::path_helper_test
