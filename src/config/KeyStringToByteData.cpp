#include "velm/KeyStringToByteData.h"

namespace velm {
namespace {

constexpr int kByteCount = 32;
constexpr int kDigitCount = 2 * kByteCount;

unsigned int ValueOf(char character) {
    if (character >= 'a' && character <= 'f') {
        return static_cast<unsigned int>(character - 'a') + 10;
    }
    if (character >= 'A' && character <= 'F') {
        return static_cast<unsigned int>(character - 'A') + 10;
    }
    return static_cast<unsigned char>(character) & 0x0FU;  // correct for '0' to '9', too
}

}  // namespace

KeyStringToByteData::KeyStringToByteData() = default;
KeyStringToByteData::KeyStringToByteData(const KeyStringToByteData&) = default;
KeyStringToByteData::~KeyStringToByteData() = default;
KeyStringToByteData& KeyStringToByteData::operator=(const KeyStringToByteData&) = default;

ErrorCode KeyStringToByteData::Translate(int textLength, const char* text, int bufferLength,
                                         unsigned char* buffer) {
    if (textLength < kDigitCount || bufferLength < kByteCount) {
        return VELM_ERROR_UTIL_DATA_LENGTH;
    }
    for (int i = 0; i < kByteCount; ++i) {
        buffer[i] = static_cast<unsigned char>(ValueOf(text[2 * i]) << 4 | ValueOf(text[2 * i + 1]));
    }
    return 0;
}

}  // namespace velm
