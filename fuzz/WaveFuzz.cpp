// WaveFileReadHelper on a file of arbitrary bytes: it terminates, and returns no more than the file contains.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Fuzz.h"
#include "ScratchFile.h"
#include "velm/core/FileReader.h"
#include "velm/WaveFileReadHelper.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ScratchFile file;
    velm::FileReader reader;
    VELM_FUZZ_DEMAND(
        reader.Open(file.Write(std::string(reinterpret_cast<const char*>(data), size)).c_str()) == 0U);
    velm::WaveFileReadHelper wave;
    if (wave.Initialize(&reader).IsFailed()) {
        return 0;
    }
    static std::vector<unsigned char> block(1 << 16);
    std::size_t delivered = 0;
    for (;;) {
        unsigned long long got = 0;
        if (wave.GetWaveData(block.data(), &got, block.size(), 10).IsFailed()) {
            break;
        }
        VELM_FUZZ_DEMAND(got != 0 && got <= block.size());
        delivered += got;
        VELM_FUZZ_DEMAND(delivered <= size);
    }
    return 0;
}
