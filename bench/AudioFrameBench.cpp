// Writing and reading an audio frame, against the copy and the six library calls that it takes at least.
#include <cstring>

#include "EmptyCall.h"
#include "Families.h"
#include "velm/AudioFrame.h"

namespace velm::bench {
namespace {

constexpr unsigned int kSize = 960;
constexpr unsigned int kHeader = 6;
constexpr unsigned int kPayloadSpan = 4096;

}  // namespace

void MeasureAudioFrame(Suite& suite) {
    // The payloads start at changing offsets within a page. Perhaps loads wait for stores at the same offset
    // of another page; with a fixed offset, that would differ from run to run.
    unsigned char payloads[kPayloadSpan + kSize] = {1, 2, 3};
    const auto payload = [&payloads](unsigned int number) { return payloads + number * 64 % kPayloadSpan; };
    AudioFrame writer;
    AudioFrame reader;
    unsigned short counter = 0;
    const Contender ours = Repeat(
        "AudioFrame",
        [&] {
            writer.InitilizeWriter(E_FrameType_Raw0, counter, kSize, payload(counter));
            ++counter;
            reader.InitilizeReader(writer.GetFrameBuffer(), writer.GetFrameBufferSize());
            Keep(reader.GetDataBuffer());
            Keep(reader.GetDataBufferSize());
        },
        kShort);
    unsigned char frame[kHeader + kSize];
    std::size_t size = kSize;
    Keep(&size);  // for a constant size the compiler inlines a slower copy
    const Contender limit = Repeat(
        "the copy and six calls into a library",
        [&] {
            Keep(&frame);  // keeps the header's bytes as single stores
            auto* const header = static_cast<volatile unsigned char*>(frame);
            header[0] = kHeader;
            header[1] = 0;
            header[2] = static_cast<unsigned char>(counter);
            header[3] = static_cast<unsigned char>(counter >> 8);
            header[4] = static_cast<unsigned char>(kSize & 0xFF);
            header[5] = static_cast<unsigned char>(kSize >> 8);
            std::memcpy(frame + kHeader, payload(counter), size);
            ++counter;
            for (int i = 0; i < 6; ++i) {
                Keep(EmptyCall(frame, kHeader + kSize));
            }
        },
        kShort);
    suite.Compare("AudioFrame", "write and read, 960 bytes", ours, {LimitOf(limit, 0.85)});
}

}  // namespace velm::bench
