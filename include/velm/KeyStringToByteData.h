#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Translates keys that are written in hexadecimal.
/// Threads: any number at once.
class VELM_UTIL_API KeyStringToByteData {
public:
    KeyStringToByteData();
    /// @{
    /// There is nothing in an object to copy.
    KeyStringToByteData(const KeyStringToByteData& other);
    ~KeyStringToByteData();
    KeyStringToByteData& operator=(const KeyStringToByteData& other);
    /// @}

    /// Translates the first 64 characters, two for a byte, to 32 bytes. A character that is no hexadecimal
    /// digit counts as the low four bits of its code; none is refused.
    /// @param textLength  of `text`, in characters
    /// @param bufferLength  of `buffer`, in bytes
    /// @param buffer  receives 32 bytes; the caller's
    /// @return 0; VELM_ERROR_UTIL_DATA_LENGTH for a text of under 64 characters or a buffer of under 32
    ///         bytes, which then is unchanged
    static ErrorCode Translate(int textLength, const char* text, int bufferLength, unsigned char* buffer);
};

}  // namespace velm
