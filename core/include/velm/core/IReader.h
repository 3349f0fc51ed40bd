#pragma once

#include "velm/core/ErrorCode.h"
#include "velm/core/Export.h"

namespace velm {

/// A forward-only source of bytes.
class VELM_CORE_API IReader {
public:
    /// Reads the next `size` bytes.
    /// @param readSize  out: number of bytes read, also on failure; may be null
    /// @param buffer  out: `size` bytes, owned by the caller
    /// @return 0 when all `size` bytes were read; otherwise a failure, also at the end of the data
    /// Threads: one at a time.
    virtual ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long size) = 0;

    /// Reads the next byte.
    /// @param value  out: the byte; unchanged on failure
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null `value`; otherwise the failure of Read
    /// Threads: one at a time.
    ErrorCode ReadU8(unsigned char* value) {
        if (value != nullptr && m_next != m_end) {
            *value = *m_next++;
            return 0;
        }
        return ReadU8Slowly(value);
    }

    /// Discards the next `size` bytes; stops silently when a read fails.
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
    /// The unread part of a derived reader's own buffer: ReadU8 takes bytes from it without a virtual call.
    /// An unbuffered reader leaves both null.
    const unsigned char* m_next = nullptr;
    const unsigned char* m_end = nullptr;
    /// @}

private:
    ErrorCode ReadU8Slowly(unsigned char* value);
};

}  // namespace velm
