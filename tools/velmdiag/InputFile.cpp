#include "InputFile.h"

#include <algorithm>

#include "Command.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"

namespace velmdiag {

std::string ReadWholeFile(const std::string& path, std::size_t maxSize) {
    constexpr std::size_t kMinBlock = 64 * 1024;
    velm::FileReader reader;
    CheckFile(path, reader.Open(path.c_str()));
    std::string bytes;
    for (;;) {
        const std::size_t held = bytes.size();
        const std::size_t block = std::max(kMinBlock, held);
        bytes.resize(held + block);
        unsigned long long got = 0;
        const velm::ErrorCode result = reader.Read(&got, bytes.data() + held, block);
        bytes.resize(held + got);
        if (bytes.size() > maxSize) {
            throw Failure{path + ": is larger than " + std::to_string(maxSize >> 20) + " MiB"};
        }
        if (result == velm::VELM_ERROR_CORE_END_OF_DATA) {
            return bytes;
        }
        CheckFile(path, result);
    }
}

}  // namespace velmdiag
