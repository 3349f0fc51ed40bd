#include "velm/core/ErrorRegistry.h"

#include <gtest/gtest.h>

#include <string>

#include "velm/core/CoreErrorCode.h"

namespace velm {
namespace {

TEST(ErrorRegistry, KeepsItsOwnCopyOfTheFirstRegistration) {
    std::string facility = "A_FACILITY";
    std::string name = "A_NAME";
    RegisterErrorCode(0x90000001, facility.c_str(), name.c_str());
    facility.assign(facility.size(), 'x');
    name.assign(name.size(), 'x');
    RegisterErrorCode(0x90000001, "OTHER", "OTHER");

    const ErrorCodeInfo* const info = FindErrorCode(0x90000001);
    ASSERT_NE(info, nullptr);
    EXPECT_STREQ(info->facility, "A_FACILITY");
    EXPECT_STREQ(info->name, "A_NAME");
    EXPECT_EQ(GetRegisteredErrorCodes().back().code, 0x90000001U);
}

TEST(ErrorRegistry, KnowsTheCoreCodesAndNoOthers) {
    ASSERT_NE(FindErrorCode(0x84E8900D), nullptr);
    EXPECT_STREQ(FindErrorCode(0x84E8900D)->name, "VELM_ERROR_CORE_NOTHING_TO_READ");
    EXPECT_EQ(FindErrorCode(0), nullptr);
    EXPECT_EQ(FindErrorCode(0x84E89000), nullptr);
}

TEST(ErrorRegistry, TakesNullTexts) {
    RegisterErrorCode(0x90000002, nullptr, nullptr);
    ASSERT_NE(FindErrorCode(0x90000002), nullptr);
    EXPECT_STREQ(FindErrorCode(0x90000002)->name, "");
}

}  // namespace
}  // namespace velm
