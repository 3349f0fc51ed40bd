#include "velm/WaveFileReadHelper.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Random.h"
#include "Riff.h"
#include "TemporaryFile.h"
#include "velm/core/CoreErrorCode.h"
#include "velm/core/FileReader.h"

namespace velm::wave_file_read_helper_test {

using namespace test;

std::string Samples(std::size_t size) {
    const auto bytes = RandomBytes(size);
    return {bytes.begin(), bytes.end()};
}

/// A helper that reads a file with these bytes.
struct Wave {
    explicit Wave(const std::string& bytes) : file("wave.wav", bytes) {
        EXPECT_EQ(reader.Open(file.Name()), 0U);
        initialized = helper.Initialize(&reader);
    }

    /// Reads all sample data in blocks of 10 ms, each with a copy: copies continue where the original
    /// stopped.
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

    TemporaryFile file;
    FileReader reader;
    WaveFileReadHelper helper;
    ErrorCode initialized;
};

/// Expects the tag, channels, sample rate and depth that the body of a "fmt " chunk gives.
void ExpectFormat(WaveFileReadHelper& helper, const std::string& format) {
    unsigned int rate = 0;
    unsigned int channels = 0;
    unsigned int bits = 0;
    unsigned int tag = 0;
    EXPECT_EQ(helper.GetSampleRate(&rate), 0U);
    EXPECT_EQ(helper.GetChannelNum(&channels), 0U);
    EXPECT_EQ(helper.GetBitsPerSample(&bits), 0U);
    EXPECT_EQ(helper.GetFormatTag(&tag), 0U);
    EXPECT_EQ(Le16(tag) + Le16(channels) + Le32(rate), format.substr(0, 8));
    EXPECT_EQ(Le16(bits), format.substr(14, 2));
}

TEST(WaveFileReadHelper, DeliversSampleDataAndNothingElse) {
    const std::string pcm = PcmFormat(2, 48000, 16);
    const std::string format = Chunk("fmt ", pcm);
    const std::string even = Samples(960 * 3 + 100);
    const std::string odd = Samples(961);
    const std::string data = Chunk("data", even);
    const struct {
        const char* what;
        std::string bytes;
        std::string expected;
        unsigned int code = 0;
    } cases[] = {
        {"40-byte format", Riff(Chunk("fmt ", pcm + std::string(24, 'x')) + data), even},
        {"chunks before the format", Riff(Chunk("JUNK", Samples(70'001)) + format + data), even},
        {"empty chunks", Riff(format + Chunk("JUNK", "") + Chunk("data", "") + data), even},
        {"odd chunks", Riff(format + Chunk("data", odd) + Chunk("LIST", "odd") + data), odd + even},
        {"tags in another case", Riff(format + Chunk("DATA", odd) + Chunk("Fmt ", odd) + data), even},
        {"truncated second format", Riff(format + data + std::string("fmt \x12\0\0\0", 8)), even},
        {"big-endian", "RIFX" + Le32(40) + "WAVE" + format + data, "", VELM_ERROR_UTIL_UNKNOWN},
        {"another form", "RIFF" + Le32(40) + "AVI " + format + data, "", VELM_ERROR_UTIL_UNKNOWN},
        {"chunk as large as the whole", "RIFF" + Le32(16) + "WAVE" + format, "", VELM_ERROR_UTIL_DATA_BROKEN},
        {"chunk of 4 GB in 20 bytes", "RIFF" + Le32(0xFFFFFFFF) + "WAVEJUNK" + Le32(0xFFFFFFFE), "",
         VELM_ERROR_CORE_END_OF_DATA},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Wave wave(c.bytes);
        ASSERT_EQ(wave.initialized, c.code);
        if (c.code == 0) {
            EXPECT_TRUE(wave.ReadAll() == c.expected);
            ExpectFormat(wave.helper, pcm);
        }
    }
}

TEST(WaveFileReadHelper, SizesBlocksByPlayTime) {
    const struct {
        unsigned int channels, rate, milliSec, bufferSize;
        unsigned int code, blockSize;
    } cases[] = {
        {2, 48000, 10, 960, 0, 960},
        {1, 48000, 20, 959, VELM_ERROR_UTIL_INVALID_PARAM, 0},
        {1, 44100, 1, 4096, VELM_ERROR_UTIL_INVALID_PARAM, 0},
        {0, 48000, 10, 4096, VELM_ERROR_CORE_NOTHING_TO_READ, 0},
        // The products wrap at 32 bits: 500,000,000 * 9 becomes 205,032,704, which is not a multiple of 1000.
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
        if (c.bufferSize == 959) {  // an error skips no data: valid arguments get the first block
            ASSERT_EQ(wave.helper.GetWaveData(bytes, &size, 960, 20), 0U);
            EXPECT_EQ(buffer.substr(0, 960), data.substr(0, 960));
        }
    }
}

// If a second format chunk is truncated, its bytes replace those of the first. A chunk under 18 bytes clears
// the first format before that.
TEST(WaveFileReadHelper, ReadsTruncatedFilesUpToTheirEnd) {
    const std::string data = Samples(250);
    const std::string first = PcmFormat(1, 8000, 8) + std::string(2, '\0');
    const std::string second = PcmFormat(2, 44100, 16) + std::string(2, '\1');
    for (const std::size_t formatSize : {16U, 18U}) {
        const std::string before = Chunk("fmt ", first) + Chunk("LIST", "odd");
        const std::string whole =
            Riff(before + Chunk("data", data) + Chunk("fmt ", second.substr(0, formatSize)));
        const std::size_t dataBegin = 12 + before.size() + 8;
        for (std::size_t size = 0; size < whole.size(); ++size) {
            SCOPED_TRACE(testing::Message() << size << ", format of " << formatSize);
            Wave wave(whole.substr(0, size));
            ASSERT_EQ(wave.initialized, size < dataBegin ? VELM_ERROR_CORE_END_OF_DATA : 0U);
            if (size < dataBegin) {
                continue;
            }
            EXPECT_EQ(wave.ReadAll(), data.substr(0, size - dataBegin));
            const std::size_t left = formatSize - std::min(formatSize, whole.size() - size);
            const bool cleared = formatSize < 18 && whole.size() - size <= formatSize;
            const std::string format =
                second.substr(0, left) + (cleared ? std::string(18, '\0') : first).substr(left);
            ExpectFormat(wave.helper, format);
        }
    }
}

TEST(WaveFileReadHelper, RejectsInvalidArgumentsAndState) {
    Wave wave(Riff(Chunk("data", "abcd") + Chunk("fmt ", PcmFormat(1, 8000, 8))));
    WaveFileReadHelper fresh;
    WaveFileReadHelper& helper = wave.helper;
    unsigned char buffer[1000];
    unsigned long long size = 0;
    unsigned int value = 0;
    EXPECT_EQ(fresh.Initialize(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(fresh.GetWaveData(buffer, &size, 1000, 10), VELM_ERROR_UTIL_ILLEGAL_CALL);
    EXPECT_EQ(helper.GetSampleRate(&value), VELM_ERROR_UTIL_ILLEGAL_CALL) << "no format before the data";
    EXPECT_EQ(helper.GetChannelNum(&value), VELM_ERROR_UTIL_ILLEGAL_CALL);
    EXPECT_EQ(helper.GetWaveData(buffer, &size, 1000, 10), VELM_ERROR_CORE_NOTHING_TO_READ);
    for (const ErrorCode result :
         {helper.GetSampleRate(nullptr), helper.GetChannelNum(nullptr),
          helper.GetWaveData(nullptr, &size, 1000, 10), helper.GetWaveData(buffer, nullptr, 1000, 10),
          helper.GetWaveData(buffer, &size, 0, 10), helper.GetWaveData(buffer, &size, 1000, 0)}) {
        EXPECT_EQ(result, VELM_ERROR_UTIL_INVALID_PARAM);
    }
}

}  // namespace velm::wave_file_read_helper_test
