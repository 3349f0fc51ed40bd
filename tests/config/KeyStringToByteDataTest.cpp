#include "velm/KeyStringToByteData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>

namespace velm {
namespace {

TEST(KeyStringToByteData, DigitsOfEveryKindGiveTheirHalfByte) {
    const struct {
        const char* digits;
        unsigned char first;
        unsigned char second;
    } rows[] = {
        {"0123", 0x01, 0x23}, {"4567", 0x45, 0x67}, {"89ab", 0x89, 0xAB},
        {"cdef", 0xCD, 0xEF}, {"CDEF", 0xCD, 0xEF}, {"ABab", 0xAB, 0xAB},
        {"gG z", 0x77, 0x0A}, {"/:@`", 0xFA, 0x00}, {"\xFF\x80\xC3\xA9", 0xF0, 0x39},
    };
    for (const auto& row : rows) {
        std::string text;
        while (text.size() < 100) {  // of which 64 count
            text += row.digits;
        }
        std::array<unsigned char, 34> buffer{};
        EXPECT_EQ(KeyStringToByteData::Translate(100, text.c_str(), 34, buffer.data()), 0U);
        for (std::size_t i = 0; i < 32; i += 2) {
            EXPECT_EQ(buffer[i], row.first) << row.digits;
            EXPECT_EQ(buffer[i + 1], row.second) << row.digits;
        }
        EXPECT_EQ(buffer[32] | buffer[33], 0) << "only 32 bytes are the caller's to lose";
    }
}

TEST(KeyStringToByteData, LengthsBelowTheMinimumTouchNothing) {
    const std::string text(64, 'f');
    std::array<unsigned char, 32> buffer{};
    for (const auto& [textLength, bufferLength] : {std::pair{63, 32}, {64, 31}, {0, 0}, {-1, 32}, {64, -1}}) {
        EXPECT_EQ(KeyStringToByteData::Translate(textLength, text.c_str(), bufferLength, buffer.data()),
                  VELM_ERROR_UTIL_DATA_LENGTH);
    }
    EXPECT_EQ(KeyStringToByteData::Translate(0, nullptr, 0, nullptr), VELM_ERROR_UTIL_DATA_LENGTH);
    EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](unsigned char byte) { return byte == 0; }));
    EXPECT_EQ(KeyStringToByteData::Translate(64, text.c_str(), 32, buffer.data()), 0U);
}

}  // namespace
}  // namespace velm
