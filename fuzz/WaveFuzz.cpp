// WaveFileReadHelper on a file of arbitrary bytes: it terminates, and returns no more than the file contains.
#include <vector>

#include "Fuzz.h"
#include "velm/core/FileReader.h"
#include "velm/WaveFileReadHelper.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const velm::test::TemporaryFile file = FileOf(TextOf(data, size));
    velm::FileReader reader;
    VELM_FUZZ_DEMAND(reader.Open(file.Name()) == 0U);
    velm::WaveFileReadHelper wave;
    if (wave.Initialize(&reader).IsFailed()) {
        return 0;
    }
    static std::vector<unsigned char> block(1 << 16);
    std::size_t delivered = 0;
    unsigned long long got = 0;
    while (wave.GetWaveData(block.data(), &got, block.size(), 10) == 0U) {
        VELM_FUZZ_DEMAND(got != 0 && got <= block.size());
        delivered += got;
        VELM_FUZZ_DEMAND(delivered <= size);
    }
    return 0;
}
