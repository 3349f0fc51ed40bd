#include <velm/VelmUtil.h>

#include "Operation.h"
#include "Riff.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"

namespace velm::test {
namespace {

long long CopyFrame(Attempt& attempt) {
    AudioFrame frame;
    unsigned char data[100] = {};
    frame.InitilizeWriter(E_FrameType_Raw0, 1, 2, data);
    const long long code = attempt([&] { return frame.InitilizeWriter(E_FrameType_Raw0, 1, 100, data); });
    EXPECT_EQ(frame.GetFrameBuffer() != nullptr, code == 0);
    EXPECT_EQ(frame.InitilizeWriter(E_FrameType_Raw0, 1, 2, data), 0U);
    return code;
}

long long MakeSampleRing(Attempt& attempt) {
    return attempt([] {
        AudioStream stream(100, 2, 16);
        stream.PushBackClearSamples(3);
        return stream.Initialize();
    });
}

long long MakeFrameRing(Attempt& attempt) {
    AudioFrameStream stream(4, 2, 1, 16);
    const long long code = attempt([&] { return stream.Initialize(); });
    EXPECT_EQ(stream.PushBackClearFrame(), 0U);
    EXPECT_EQ(stream.DropAllFrame(), 0U);
    EXPECT_EQ(stream.Initialize(), 0U);
    return code;
}

long long ReadWave(Attempt& attempt) {
    const TemporaryFile file(
        "a.wav", Riff(Chunk("fmt ", PcmFormat(1, 8000, 16)) + Chunk("data", std::string(70'000, 'x'))));
    FileReader reader;
    reader.Open(file.Name());
    std::vector<unsigned char> block(70'000);
    return attempt([&] {
        WaveFileReadHelper wave;
        unsigned long long size = 0;
        const ErrorCode result = wave.Initialize(&reader);
        return result.IsFailed() ? result : wave.GetWaveData(block.data(), &size, block.size(), 8500);
    });
}

}  // namespace

Operations AudioOperations() {
    constexpr long long kNoMemory = VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    return {
        {.what = "AudioFrame", .run = CopyFrame, .noMemory = {kNoMemory}},
        {.what = "AudioStream", .run = MakeSampleRing, .noMemory = {VELM_ERROR_UTIL_NOT_INITIALIZED}},
        {.what = "AudioFrameStream", .run = MakeFrameRing, .noMemory = {kNoMemory}},
        {.what = "WaveFileReadHelper",
         .run = ReadWave,
         .failures = {{"ReadFile", VELM_ERROR_CORE_READ_FAILED}}},
    };
}

}  // namespace velm::test
