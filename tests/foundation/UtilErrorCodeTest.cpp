#include "velm/UtilErrorCode.h"

#include <gtest/gtest.h>

#include <string>

#include "velm/AudioFrame.h"
#include "velm/core/ErrorRegistry.h"

namespace velm::util_error_code_test {

TEST(UtilErrorCode, RegistersItsTenCodesInOrder) {
    const AudioFrame keepsTheLibraryLoaded;
    const auto codes = GetRegisteredErrorCodes();
    const char* const names[] = {"UNKNOWN",         "NOT_ENOUGH_MEMORY", "INVALID_PARAM", "ILLEGAL_CALL",
                                 "NOT_INITIALIZED", "ALREADY_EXIST",     "NOT_EXIST",     "DATA_LENGTH",
                                 "D3D9_FAILED",     "DATA_BROKEN"};
    ASSERT_GE(codes.size(), std::size(names));
    for (unsigned int i = 0; i < std::size(names); ++i) {
        EXPECT_EQ(codes[i].code, 0x8149AC01U + i);
        EXPECT_STREQ(codes[i].facility, "VELM_FACILITY_UTIL");
        EXPECT_EQ(codes[i].name, std::string("VELM_ERROR_UTIL_") + names[i]);
    }
}

}  // namespace velm::util_error_code_test
