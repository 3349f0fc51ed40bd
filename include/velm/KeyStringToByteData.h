#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Decodes keys written in hexadecimal.
/// Threads: any.
class VELM_UTIL_API KeyStringToByteData {
public:
    KeyStringToByteData();
    /// @{
    /// Objects have no state.
    KeyStringToByteData(const KeyStringToByteData& other);
    ~KeyStringToByteData();
    KeyStringToByteData& operator=(const KeyStringToByteData& other);
    /// @}

    /// Decodes the first 64 characters, two per byte, into 32 bytes. Any character is accepted: one that is
    /// not a hexadecimal digit counts as the low four bits of its code.
    /// @param textLength  length of `text` in characters
    /// @param text  owned by the caller; needs no NUL
    /// @param bufferLength  size of `buffer` in bytes
    /// @param buffer  out: 32 bytes; owned by the caller; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_DATA_LENGTH for fewer than 64 characters or a buffer under 32 bytes
    static ErrorCode Translate(int textLength, const char* text, int bufferLength, unsigned char* buffer);
};

}  // namespace velm
