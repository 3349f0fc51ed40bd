#include "velm/core/IReader.h"

#include <algorithm>

#include "velm/core/CoreErrorCode.h"

namespace velm {

IReader::~IReader() = default;

void IReader::Skip(unsigned long long size) {
    for (;;) {
        const auto held = std::min(size, static_cast<unsigned long long>(m_end - m_next));
        m_next += held;
        size -= held;
        unsigned char ignored = 0;
        if (size == 0 || ReadU8Slowly(&ignored).IsFailed()) {
            return;
        }
        --size;
    }
}

ErrorCode IReader::ReadU8Slowly(unsigned char* value) {
    if (value == nullptr) {
        return VELM_ERROR_CORE_INVALID_PARAM;
    }
    unsigned char byte = 0;
    unsigned long long readSize = 0;
    const ErrorCode result = Read(&readSize, &byte, 1);
    if (!result.IsFailed()) {
        *value = byte;
    }
    return result;
}

}  // namespace velm
