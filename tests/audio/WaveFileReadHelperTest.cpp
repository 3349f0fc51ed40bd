#include "velm/WaveFileReadHelper.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "Pattern.h"
#include "Riff.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"

namespace velm {
namespace {

using test::Chunk;
using test::Le32;
using test::PcmFormat;
using test::Riff;

std::string Samples(std::size_t size) {
    const auto bytes = test::Pattern(size);
    return {bytes.begin(), bytes.end()};
}

/// A helper over a file with given bytes.
struct Wave {
    explicit Wave(const std::string& bytes) : file("wave.wav", bytes) {
        EXPECT_EQ(reader.Open(file.Name()), 0U);
        initialized = helper.Initialize(&reader);
    }

    /// All sample data, in blocks of 10 ms. A copy goes on where the helper stood.
    std::string ReadAll() {
        std::string all;
        std::vector<unsigned char> block(1 << 16);
        ErrorCode result;
        do {
            unsigned long long size = 0;
            helper = WaveFileReadHelper(helper);
            result = helper.GetWaveData(block.data(), &size, block.size(), 10);
            all.append(block.data(), block.data() + size);
        } while (!result.IsFailed());
        EXPECT_EQ(result, VELM_ERROR_CORE_END_OF_DATA);
        return all;
    }

    test::TemporaryFile file;
    FileReader reader;
    WaveFileReadHelper helper;
    ErrorCode initialized;
};

TEST(WaveFileReadHelper, DeliversEveryByteOfTheDataAndNothingElse) {
    const std::string pcm = PcmFormat(2, 48000, 16);
    const std::string format = Chunk("fmt ", pcm);
    const std::string data = Samples(960 * 3 + 100);
    const std::string odd = Samples(961);
    const std::tuple<const char*, std::string, std::string> cases[] = {
        {"40-byte format", Chunk("fmt ", pcm + std::string(24, 'x')) + Chunk("data", data), data},
        {"chunks before the format", Chunk("JUNK", Samples(70'001)) + format + Chunk("data", data), data},
        {"empty chunks before data", format + Chunk("JUNK", "") + Chunk("data", "") + Chunk("data", data),
         data},
        {"odd chunks", format + Chunk("data", odd) + Chunk("LIST", "odd") + Chunk("data", data), odd + data},
        {"tags in other letters", format + Chunk("DATA", odd) + Chunk("Fmt ", odd) + Chunk("data", data),
         data},
    };
    for (const auto& [what, chunks, expected] : cases) {
        SCOPED_TRACE(what);
        Wave wave(Riff(chunks));
        ASSERT_EQ(wave.initialized, 0U);
        EXPECT_TRUE(wave.ReadAll() == expected);
        unsigned int rate = 0;
        unsigned int channels = 0;
        EXPECT_EQ(wave.helper.GetSampleRate(&rate), 0U);
        EXPECT_EQ(wave.helper.GetChannelNum(&channels), 0U);
        EXPECT_EQ(rate, 48000U);
        EXPECT_EQ(channels, 2U);
    }
}

TEST(WaveFileReadHelper, ChoosesBlocksAsThePlayTimeSays) {
    const struct {
        unsigned int channels, rate, milliSec, bufferSize;
        unsigned int code, blockSize;
    } cases[] = {
        {2, 48000, 10, 960, 0, 960},
        {1, 48000, 20, 959, VELM_ERROR_UTIL_INVALID_PARAM, 0},
        {1, 44100, 10, 4096, 0, 441},
        {1, 44100, 1, 4096, VELM_ERROR_UTIL_INVALID_PARAM, 0},
        {0, 48000, 10, 4096, VELM_ERROR_CORE_NOTHING_TO_READ, 0},
        // The products wrap at 32 bits: 500,000,000 * 9 is 205,032,704, no multiple of 1000.
        {1, 500'000'000, 9, 4096, VELM_ERROR_UTIL_INVALID_PARAM, 0},
    };
    const std::string data = Samples(4000);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.channels << " x " << c.rate << " Hz, " << c.milliSec << " ms");
        Wave wave(Riff(Chunk("fmt ", PcmFormat(c.channels, c.rate, 16)) + Chunk("data", data)));
        std::string buffer(4096, '#');
        auto* const bytes = reinterpret_cast<unsigned char*>(buffer.data());
        unsigned long long size = 0;
        ASSERT_EQ(wave.helper.GetWaveData(bytes, &size, c.bufferSize, c.milliSec), c.code);
        EXPECT_EQ(size, c.blockSize);
        EXPECT_EQ(buffer, data.substr(0, c.blockSize) + std::string(4096 - c.blockSize, '#'));
        if (c.bufferSize == 959) {  // a refusal moves nothing: better arguments give the first block
            ASSERT_EQ(wave.helper.GetWaveData(bytes, &size, 960, 20), 0U);
            EXPECT_EQ(buffer.substr(0, 960), data.substr(0, 960));
        }
    }
}

TEST(WaveFileReadHelper, RefusesWhatIsNoWaveFile) {
    const std::string chunks = Chunk("fmt ", PcmFormat(2, 48000, 16)) + Chunk("data", "abcd");
    const std::tuple<const char*, std::string, unsigned int> cases[] = {
        {"big-endian", "RIFX" + Le32(40) + "WAVE" + chunks, VELM_ERROR_UTIL_UNKNOWN},
        {"another form", "RIFF" + Le32(40) + "AVI " + chunks, VELM_ERROR_UTIL_UNKNOWN},
        {"chunk as large as the whole", "RIFF" + Le32(16) + "WAVE" + chunks, VELM_ERROR_UTIL_DATA_BROKEN},
        {"chunk of 4 GB in 20 bytes", "RIFF" + Le32(0xFFFFFFFF) + "WAVEJUNK" + Le32(0xFFFFFFFE),
         VELM_ERROR_CORE_END_OF_DATA},
    };
    for (const auto& [what, bytes, code] : cases) {
        EXPECT_EQ(Wave(bytes).initialized, code) << what;
    }
}

TEST(WaveFileReadHelper, AFileCutAnywhereGivesWhatItHasAndThenFails) {
    const std::string data = Samples(250);
    const std::string before = Chunk("fmt ", PcmFormat(1, 8000, 8)) + Chunk("LIST", "odd");
    const std::string whole = Riff(before + Chunk("data", data));
    const std::size_t dataBegin = 12 + before.size() + 8;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        Wave wave(whole.substr(0, size));
        ASSERT_EQ(wave.initialized, size < dataBegin ? VELM_ERROR_CORE_END_OF_DATA : 0U);
        if (size >= dataBegin) {
            EXPECT_EQ(wave.ReadAll(), data.substr(0, size - dataBegin));
        }
    }
}

TEST(WaveFileReadHelper, ChecksItsArgumentsAndItsState) {
    WaveFileReadHelper fresh;
    unsigned char buffer[1000];
    unsigned long long size = 0;
    unsigned int value = 0;
    EXPECT_EQ(fresh.Initialize(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(fresh.GetWaveData(buffer, &size, sizeof buffer, 10), VELM_ERROR_UTIL_ILLEGAL_CALL);
    EXPECT_EQ(fresh.GetSampleRate(&value), VELM_ERROR_UTIL_ILLEGAL_CALL);
    EXPECT_EQ(fresh.GetChannelNum(&value), VELM_ERROR_UTIL_ILLEGAL_CALL);

    Wave wave(Riff(Chunk("data", "abcd") + Chunk("fmt ", PcmFormat(1, 8000, 8))));
    WaveFileReadHelper& helper = wave.helper;
    EXPECT_EQ(helper.GetSampleRate(&value), VELM_ERROR_UTIL_ILLEGAL_CALL) << "no format before the data";
    EXPECT_EQ(helper.GetSampleRate(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetChannelNum(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, &size, sizeof buffer, 10), VELM_ERROR_CORE_NOTHING_TO_READ);
    Wave cut(Riff(Chunk("fmt ", PcmFormat(1, 8000, 8)) + Chunk("data", "abcd") +
                  std::string("fmt \x12\0\0\0", 8)));
    EXPECT_EQ(cut.ReadAll(), "abcd");
    EXPECT_EQ(cut.helper.GetSampleRate(&value), 0U);
    EXPECT_EQ(value, 8000U) << "of another format there is only the beginning";
    EXPECT_EQ(helper.GetWaveData(nullptr, &size, sizeof buffer, 10), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, nullptr, sizeof buffer, 10), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, &size, 0, 10), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, &size, sizeof buffer, 0), VELM_ERROR_UTIL_INVALID_PARAM);
}

}  // namespace
}  // namespace velm
