#pragma once

#include <memory>

#include "velm/core/IReader.h"

namespace velm {

/// Reads a file from start to end through a 256 KiB buffer.
/// Threads: one at a time.
class VELM_CORE_API FileReader : public IReader {
public:
    FileReader();
    ~FileReader() override;
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    /// Opens a file for reading from its start. A file that is already open is closed first, even if the call
    /// then fails.
    /// @param utf8Path  NUL-terminated
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null or empty path; VELM_ERROR_CORE_NOT_EXIST;
    ///         VELM_ERROR_CORE_ACCESS_DENIED, also for a directory; VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    ///         VELM_ERROR_CORE_UNKNOWN for any other failure
    ErrorCode Open(const char* utf8Path);

    /// Closes the file, if one is open.
    void Close();

    /// See IReader::Read.
    /// @return 0; VELM_ERROR_CORE_NOT_INITIALIZED when no file is open; VELM_ERROR_CORE_INVALID_PARAM for a
    ///         null `buffer` with a `size` above 0; VELM_ERROR_CORE_END_OF_DATA when fewer than `size` bytes
    ///         are left; VELM_ERROR_CORE_READ_FAILED when the system's read call fails
    ErrorCode Read(unsigned long long* readSize, void* buffer, unsigned long long size) override;

private:
    struct HandleCloser {
        using pointer = void*;
        void operator()(void* handle) const;
    };

    ErrorCode ReadFromFile(void* buffer, unsigned long long size, unsigned long long* got);
    ErrorCode Refill();

    std::unique_ptr<void, HandleCloser> m_file;
    std::unique_ptr<unsigned char[]> m_buffer;
};

}  // namespace velm
