#pragma once

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// A source of bytes that is read strictly forward.
class VELM_CORE_API IReader {
public:
    /// Reads the next `size` bytes.
    /// @param readSize  receives the number of bytes read, also on failure; may be null
    /// @param buffer  receives the bytes; the caller's, `size` bytes long
    /// @return 0 when all `size` bytes were read; a failure when fewer were, the end of the data included
    /// Threads: one at a time.
    virtual ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long size) = 0;

    /// Reads the next byte.
    /// @param value  receives the byte; unchanged on failure
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null `value`; else what Read returns
    /// Threads: one at a time.
    ErrorCode ReadU8(unsigned char* value) {
        if (value != nullptr && m_next != m_end) {
            *value = *m_next++;
            return 0;
        }
        return ReadU8Slowly(value);
    }

    /// Reads bytes and drops them, as so many calls of ReadU8 would; stops at the first that fails.
    /// Threads: one at a time.
    void Skip(unsigned long long size);

    virtual ~IReader();

protected:
    /// @{
    /// For derived classes.
    IReader() = default;
    IReader(const IReader&) = default;
    IReader& operator=(const IReader&) = default;
    /// @}

    /// @{
    /// The bytes that a buffering reader has at hand: ReadU8 takes them from here without a virtual call. A
    /// reader without a buffer leaves both null. They point into the reader's own storage.
    const unsigned char* m_next = nullptr;
    const unsigned char* m_end = nullptr;
    /// @}

private:
    ErrorCode ReadU8Slowly(unsigned char* value);
};

}  // namespace velm
