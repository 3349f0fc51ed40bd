#include <gtest/gtest.h>

#include "velm/posix/Control.h"
#include "velm/WindowsUtil.h"

namespace velm {
namespace {

class WindowsUtilTextPosix : public testing::Test {
protected:
    ~WindowsUtilTextPosix() override { posix::Reset(); }
};

TEST_F(WindowsUtilTextPosix, OemTextFollowsTheSystemsCodePage) {
    const struct {
        UINT codePage;
        const char* oem;
        const char* utf8;
    } rows[] = {
        {437, "\x9C\xE0", "\xC2\xA3\xCE\xB1"},
        {850, "\xD5\xF2", "\xC4\xB1\xE2\x80\x97"},
        {866, "\x8F\xE0", "\xD0\x9F\xD1\x80"},
        {932, "\x82\xA0\xB1", "\xE3\x81\x82\xEF\xBD\xB1"},
    };
    for (const auto& row : rows) {
        posix::SetOemCodePage(row.codePage);
        std::string out;
        EXPECT_EQ(WindowsUtil::GetUtf8StringFromOemcpString(row.oem, out), 0U);
        EXPECT_EQ(out, row.utf8) << row.codePage;
        EXPECT_EQ(WindowsUtil::GetOemcpStringFromUtf8String(row.utf8, out), 0U);
        EXPECT_EQ(out, row.oem) << row.codePage;
    }
    posix::SetOemCodePage(99999);
    std::string out = "old";
    EXPECT_TRUE(WindowsUtil::GetUtf8StringFromOemcpString("a", out).IsFailed());
    EXPECT_EQ(WindowsUtil::GetOemcpStringFromUtf8String("a", out), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(out, "old");
}

}  // namespace
}  // namespace velm
