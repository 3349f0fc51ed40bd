#pragma once

#include <memory>

#include "velm/core/IReader.h"

namespace velm {

/// Reads a file from its beginning to its end, through a buffer of 256 KiB.
class VELM_CORE_API FileReader : public IReader {
public:
    /// A reader that is not attached to a file.
    FileReader();
    ~FileReader() override;
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;

    /// Opens a file and stands at its beginning; a file that was open before is closed.
    /// @param utf8Path  NUL-terminated
    /// @return 0; VELM_ERROR_CORE_INVALID_PARAM for a null or empty path; VELM_ERROR_CORE_NOT_EXIST;
    ///         VELM_ERROR_CORE_ACCESS_DENIED, also for a directory; VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    ///         VELM_ERROR_CORE_UNKNOWN for any other refusal
    ErrorCode Open(const char* utf8Path);

    /// Closes the file, if one is open.
    void Close();

    /// @return 0; VELM_ERROR_CORE_NOT_INITIALIZED when no file is open; VELM_ERROR_CORE_INVALID_PARAM for a
    ///         null `buffer` with a `size` above 0; VELM_ERROR_CORE_END_OF_DATA when the file ends first;
    ///         VELM_ERROR_CORE_READ_FAILED when the system fails the read
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
