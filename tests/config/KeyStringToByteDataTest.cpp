#include "velm/KeyStringToByteData.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace velm::key_string_to_byte_data_test {

using Bytes = std::array<unsigned char, 34>;

TEST(KeyStringToByteData, ConvertsEveryKindOfDigit) {
    std::string text = "0123456789abcdefABCDEFgG z/:@`\xFF\x80\xC3\xA9";
    text.resize(64, '0');
    const Bytes expected = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xAB,
                            0xCD, 0xEF, 0x77, 0x0A, 0xFA, 0x00, 0xF0, 0x39};
    Bytes buffer{};
    EXPECT_EQ(KeyStringToByteData::Translate(100, (text + "ffff").c_str(), 34, buffer.data()), 0U);
    EXPECT_EQ(buffer, expected) << "did not read exactly 64 digits";
}

TEST(KeyStringToByteData, RejectsShortLengths) {
    const std::string text(64, 'f');
    Bytes buffer{};
    for (const auto& [textLength, bufferLength] : {std::pair{63, 32}, {64, 31}, {-1, 32}, {64, -1}}) {
        EXPECT_EQ(KeyStringToByteData::Translate(textLength, text.c_str(), bufferLength, buffer.data()),
                  VELM_ERROR_UTIL_DATA_LENGTH);
    }
    EXPECT_EQ(buffer, Bytes());
    EXPECT_EQ(KeyStringToByteData::Translate(64, text.c_str(), 32, buffer.data()), 0U);
    EXPECT_EQ(buffer[31], 0xFF);
}

}  // namespace velm::key_string_to_byte_data_test
