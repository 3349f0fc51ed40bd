// AudioFrame on arbitrary bytes: an accepted payload lies inside them, and writing it again gives the same
// frame.
#include <cstring>
#include <vector>

#include "Fuzz.h"
#include "velm/AudioFrame.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<unsigned char> bytes(data, data + size);
    velm::AudioFrame reader;
    if (reader.InitilizeReader(bytes.data(), static_cast<unsigned int>(bytes.size())).IsFailed()) {
        VELM_FUZZ_DEMAND(reader.GetDataBuffer() == nullptr && reader.GetDataBufferSize() == 0);
        return 0;
    }
    VELM_FUZZ_DEMAND(reader.GetDataBuffer() == bytes.data() + 6);
    VELM_FUZZ_DEMAND(reader.GetDataBufferSize() <= bytes.size() - 6);
    VELM_FUZZ_DEMAND(reader.IsRawCodec() != reader.IsOpusCodec());

    velm::AudioFrame writer;
    const auto written = writer.InitilizeWriter(reader.GetFrameType(), reader.GetCounter(),
                                                reader.GetDataBufferSize(), reader.GetDataBuffer());
    VELM_FUZZ_DEMAND(!written.IsFailed());
    VELM_FUZZ_DEMAND(std::memcmp(writer.GetFrameBuffer(), bytes.data(), writer.GetFrameBufferSize()) == 0);
    return 0;
}
