#include "velm/core/FileReader.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <string>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/PathHelper.h"

namespace velm {
namespace {

constexpr unsigned long long kBufferSize = 256 * 1024;
// The most bytes per system call, whose count has 32 bits.
constexpr unsigned long long kLargestRead = 1ULL << 30;

ErrorCode OpenFailure(DWORD lastError) {
    switch (lastError) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
            return VELM_ERROR_CORE_NOT_EXIST;
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            return VELM_ERROR_CORE_ACCESS_DENIED;
        default:
            return VELM_ERROR_CORE_UNKNOWN;
    }
}

}  // namespace

void FileReader::HandleCloser::operator()(void* handle) const {
    CloseHandle(handle);
}

FileReader::FileReader() = default;

FileReader::~FileReader() = default;

ErrorCode FileReader::Open(const char* utf8Path) {
    Close();
    if (utf8Path == nullptr || *utf8Path == '\0') {
        return VELM_ERROR_CORE_INVALID_PARAM;
    }
    try {
        std::wstring path;
        const ErrorCode converted = PathHelper::GetWstringFromUtf8String(utf8Path, path);
        if (converted.IsFailed()) {
            return converted;
        }
        if (m_buffer == nullptr) {
            m_buffer = std::make_unique_for_overwrite<unsigned char[]>(kBufferSize);
        }
        // Full sharing: others may write, move or delete the file while it is read.
        const HANDLE file =
            CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                        nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            return OpenFailure(GetLastError());
        }
        m_file.reset(file);
        return 0;
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    }
}

void FileReader::Close() {
    m_file.reset();
    m_next = m_end = nullptr;
}

ErrorCode FileReader::Read(unsigned long long* readSize, void* buffer, unsigned long long size) {
    unsigned long long ignored = 0;
    unsigned long long& done = readSize != nullptr ? *readSize : ignored;
    done = 0;
    if (m_file == nullptr) {
        return VELM_ERROR_CORE_NOT_INITIALIZED;
    }
    if (buffer == nullptr && size != 0) {
        return VELM_ERROR_CORE_INVALID_PARAM;
    }
    auto* out = static_cast<unsigned char*>(buffer);
    while (done < size) {
        const unsigned long long missing = size - done;
        const auto held = static_cast<unsigned long long>(m_end - m_next);
        if (held != 0) {
            const auto part = static_cast<std::size_t>(std::min(held, missing));
            std::memcpy(out + done, m_next, part);
            m_next += part;
            done += part;
        } else if (missing >= kBufferSize) {
            unsigned long long got = 0;
            const ErrorCode result = ReadFromFile(out + done, missing, &got);
            done += got;
            if (result.IsFailed()) {
                return result;
            }
        } else if (const ErrorCode result = Refill(); result.IsFailed()) {
            return result;
        }
    }
    return 0;
}

/// Reads 1 to `size` bytes, bypassing the buffer.
ErrorCode FileReader::ReadFromFile(void* buffer, unsigned long long size, unsigned long long* got) {
    DWORD count = 0;
    if (!ReadFile(m_file.get(), buffer, static_cast<DWORD>(std::min(size, kLargestRead)), &count, nullptr)) {
        return VELM_ERROR_CORE_READ_FAILED;
    }
    *got = count;
    return count != 0 ? ErrorCode(0) : ErrorCode(VELM_ERROR_CORE_END_OF_DATA);
}

ErrorCode FileReader::Refill() {
    unsigned long long got = 0;
    const ErrorCode result = ReadFromFile(m_buffer.get(), kBufferSize, &got);
    m_next = m_buffer.get();
    m_end = m_next + got;
    return result;
}

}  // namespace velm
