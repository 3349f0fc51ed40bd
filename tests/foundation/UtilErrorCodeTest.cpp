#include "velm/UtilErrorCode.h"

#include <gtest/gtest.h>

#include "velm/AudioFrame.h"
#include "velm/core/ErrorRegistry.h"

namespace velm {
namespace {

TEST(UtilErrorCode, LoadRegistersTheTenCodesInOrder) {
    const char* const names[] = {
        "VELM_ERROR_UTIL_UNKNOWN",      "VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY", "VELM_ERROR_UTIL_INVALID_PARAM",
        "VELM_ERROR_UTIL_ILLEGAL_CALL", "VELM_ERROR_UTIL_NOT_INITIALIZED",   "VELM_ERROR_UTIL_ALREADY_EXIST",
        "VELM_ERROR_UTIL_NOT_EXIST",    "VELM_ERROR_UTIL_DATA_LENGTH",       "VELM_ERROR_UTIL_D3D9_FAILED",
        "VELM_ERROR_UTIL_DATA_BROKEN",
    };
    const AudioFrame keepsTheLibraryLoaded;
    const auto codes = GetRegisteredErrorCodes();
    ASSERT_GE(codes.size(), std::size(names));
    for (unsigned int i = 0; i < std::size(names); ++i) {
        EXPECT_EQ(codes[i].code, 0x8149AC01U + i);
        EXPECT_STREQ(codes[i].facility, "VELM_FACILITY_UTIL");
        EXPECT_STREQ(codes[i].name, names[i]);
        EXPECT_TRUE(ErrorCode(codes[i].code).IsFailed());
    }
}

}  // namespace
}  // namespace velm
