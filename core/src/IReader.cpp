#include "velm/core/IReader.h"

#include "velm/core/CoreErrorCode.h"

namespace velm {

IReader::~IReader() = default;

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
