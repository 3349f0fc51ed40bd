#include "velm/WaveFileReadHelper.h"

#include <gtest/gtest.h>

#include <string>

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
class Wave {
public:
    explicit Wave(const std::string& bytes) : m_file("wave.wav", bytes) {
        EXPECT_EQ(m_reader.Open(m_file.Name()), 0U);
    }

    ErrorCode Initialize() { return m_helper.Initialize(&m_reader); }
    WaveFileReadHelper& Helper() { return m_helper; }

    /// All sample data up to the code that ends it.
    std::string ReadAll(unsigned int milliSec, ErrorCode* end) {
        std::string all;
        std::string block(1 << 16, '\0');
        for (;;) {
            unsigned long long size = 0;
            *end = m_helper.GetWaveData(reinterpret_cast<unsigned char*>(block.data()), &size, block.size(),
                                        milliSec);
            all.append(block, 0, size);
            if (end->IsFailed()) {
                return all;
            }
        }
    }

private:
    test::TemporaryFile m_file;
    FileReader m_reader;
    WaveFileReadHelper m_helper;
};

TEST(WaveFileReadHelper, DeliversEveryByteOfTheDataAndNothingElse) {
    const std::string format = Chunk("fmt ", PcmFormat(2, 48000, 16));
    const std::string data = Samples(960 * 3 + 100);
    const std::string odd = Samples(961);
    struct Case {
        const char* what;
        std::string chunks;
        std::string expected;
    };
    const Case cases[] = {
        {"plain", format + Chunk("data", data), data},
        {"18-byte format",
         Chunk("fmt ", PcmFormat(2, 48000, 16) + std::string(2, '\0')) + Chunk("data", data), data},
        {"40-byte format",
         Chunk("fmt ", PcmFormat(2, 48000, 16) + std::string(24, 'x')) + Chunk("data", data), data},
        {"odd chunk before", format + Chunk("LIST", "odd") + Chunk("data", data), data},
        {"chunks before the format", Chunk("JUNK", Samples(70'001)) + format + Chunk("data", data), data},
        {"empty chunk before", format + Chunk("JUNK", "") + Chunk("data", data), data},
        {"odd chunk after", format + Chunk("data", data) + Chunk("LIST", "odd"), data},
        {"odd data, chunk after", format + Chunk("data", odd) + Chunk("LIST", "even"), odd},
        {"two data chunks", format + Chunk("data", odd) + Chunk("LIST", "odd") + Chunk("data", data),
         odd + data},
        {"empty data", format + Chunk("data", "") + Chunk("LIST", "tail"), ""},
        {"empty data, then data", format + Chunk("data", "") + Chunk("data", data), data},
        {"tags in other letters", format + Chunk("DATA", odd) + Chunk("Fmt ", odd) + Chunk("data", data),
         data},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Wave wave(Riff(c.chunks));
        ASSERT_EQ(wave.Initialize(), 0U);
        ErrorCode end;
        EXPECT_TRUE(wave.ReadAll(10, &end) == c.expected);
        EXPECT_EQ(end, VELM_ERROR_CORE_END_OF_DATA);
        unsigned int rate = 0;
        unsigned int channels = 0;
        EXPECT_EQ(wave.Helper().GetSampleRate(&rate), 0U);
        EXPECT_EQ(wave.Helper().GetChannelNum(&channels), 0U);
        EXPECT_EQ(rate, 48000U);
        EXPECT_EQ(channels, 2U);
    }
}

TEST(WaveFileReadHelper, ChoosesBlocksAsThePlayTimeSays) {
    struct Case {
        unsigned int channels;
        unsigned int rate;
        unsigned int milliSec;
        unsigned int bufferSize;
        unsigned int code;
        unsigned int blockSize;
    };
    const Case cases[] = {
        {2, 48000, 10, 960, 0, 960},
        {1, 48000, 20, 959, VELM_ERROR_UTIL_INVALID_PARAM, 0},
        {1, 48000, 20, 960, 0, 960},
        {1, 44100, 10, 4096, 0, 441},
        {1, 44100, 1, 4096, VELM_ERROR_UTIL_INVALID_PARAM, 0},
        {0, 48000, 10, 4096, VELM_ERROR_CORE_NOTHING_TO_READ, 0},
        {2, 0, 10, 4096, VELM_ERROR_CORE_NOTHING_TO_READ, 0},
        {1, 8000, 1, 4096, 0, 8},
        // The products wrap at 32 bits: 500,000,000 * 9 is 205,032,704, no multiple of 1000.
        {1, 500'000'000, 9, 4096, VELM_ERROR_UTIL_INVALID_PARAM, 0},
        {0xFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 4096, VELM_ERROR_UTIL_INVALID_PARAM, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.channels << " x " << c.rate << " Hz, " << c.milliSec << " ms");
        const std::string data = Samples(4000);
        Wave wave(Riff(Chunk("fmt ", PcmFormat(c.channels, c.rate, 16)) + Chunk("data", data)));
        ASSERT_EQ(wave.Initialize(), 0U);
        std::string buffer(4096, '#');
        auto* const bytes = reinterpret_cast<unsigned char*>(buffer.data());
        unsigned long long size = 0;
        ASSERT_EQ(wave.Helper().GetWaveData(bytes, &size, c.bufferSize, c.milliSec), c.code);
        EXPECT_EQ(size, c.blockSize);
        EXPECT_EQ(buffer, data.substr(0, c.blockSize) + std::string(4096 - c.blockSize, '#'));
        if (c.code == VELM_ERROR_UTIL_INVALID_PARAM && c.rate == 48000) {
            // A refusal moves nothing: better arguments give the first block.
            ASSERT_EQ(wave.Helper().GetWaveData(bytes, &size, 960, 20), 0U);
            EXPECT_EQ(buffer.substr(0, 960), data.substr(0, 960));
        }
    }
}

TEST(WaveFileReadHelper, RefusesWhatIsNoWaveFile) {
    const std::string format = Chunk("fmt ", PcmFormat(2, 48000, 16));
    struct Case {
        const char* what;
        std::string bytes;
        unsigned int code;
    };
    const std::string whole = Riff(format + Chunk("data", "abcd"));
    std::string riffx = whole;
    riffx[3] = 'X';
    std::string avi = whole;
    avi.replace(8, 4, "AVI ");
    const Case cases[] = {
        {"empty", "", VELM_ERROR_CORE_END_OF_DATA},
        {"text", "once upon a time", VELM_ERROR_UTIL_UNKNOWN},
        {"big-endian", riffx, VELM_ERROR_UTIL_UNKNOWN},
        {"another form", avi, VELM_ERROR_UTIL_UNKNOWN},
        {"no chunk", Riff(""), VELM_ERROR_CORE_END_OF_DATA},
        {"no data", Riff(format), VELM_ERROR_CORE_END_OF_DATA},
        {"chunk of 4 GB in 20 bytes", "RIFF" + Le32(0xFFFFFFFF) + "WAVEJUNK" + Le32(0xFFFFFFFE),
         VELM_ERROR_CORE_END_OF_DATA},
        {"chunk as large as the whole", "RIFF" + Le32(100) + "WAVEJUNK" + Le32(100),
         VELM_ERROR_UTIL_DATA_BROKEN},
        {"chunk just smaller, but cut", "RIFF" + Le32(100) + "WAVEJUNK" + Le32(99),
         VELM_ERROR_CORE_END_OF_DATA},
        {"size of the whole 0", "RIFF" + Le32(0) + "WAVE" + format, VELM_ERROR_UTIL_DATA_BROKEN},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Wave wave(c.bytes);
        EXPECT_EQ(wave.Initialize(), c.code);
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
        const ErrorCode result = wave.Initialize();
        if (size < dataBegin) {
            EXPECT_EQ(result, VELM_ERROR_CORE_END_OF_DATA);
            continue;
        }
        ASSERT_EQ(result, 0U);
        ErrorCode end;
        EXPECT_EQ(wave.ReadAll(10, &end), data.substr(0, size - dataBegin));
        EXPECT_EQ(end, VELM_ERROR_CORE_END_OF_DATA);
    }
}

TEST(WaveFileReadHelper, ChecksItsArgumentsAndItsState) {
    WaveFileReadHelper fresh;
    unsigned char buffer[1000];
    unsigned long long size = 0;
    unsigned int value = 7;
    EXPECT_EQ(fresh.Initialize(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(fresh.GetWaveData(buffer, &size, sizeof buffer, 10), VELM_ERROR_UTIL_ILLEGAL_CALL);
    EXPECT_EQ(fresh.GetSampleRate(&value), VELM_ERROR_UTIL_ILLEGAL_CALL);
    EXPECT_EQ(fresh.GetChannelNum(&value), VELM_ERROR_UTIL_ILLEGAL_CALL);
    EXPECT_EQ(value, 7U);

    Wave wave(Riff(Chunk("data", "abcd") + Chunk("fmt ", PcmFormat(1, 8000, 8))));
    ASSERT_EQ(wave.Initialize(), 0U);
    WaveFileReadHelper& helper = wave.Helper();
    EXPECT_EQ(helper.GetSampleRate(&value), VELM_ERROR_UTIL_ILLEGAL_CALL) << "no format before the data";
    EXPECT_EQ(helper.GetSampleRate(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetChannelNum(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, &size, sizeof buffer, 10), VELM_ERROR_CORE_NOTHING_TO_READ);
    EXPECT_EQ(helper.GetWaveData(nullptr, &size, sizeof buffer, 10), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, nullptr, sizeof buffer, 10), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, &size, 0, 10), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(helper.GetWaveData(buffer, &size, sizeof buffer, 0), VELM_ERROR_UTIL_INVALID_PARAM);
    helper.Finalize();
}

TEST(WaveFileReadHelper, ACopyReadsOnThroughTheSameReader) {
    const std::string data = Samples(240);
    Wave wave(Riff(Chunk("fmt ", PcmFormat(1, 8000, 8)) + Chunk("data", data)));
    ASSERT_EQ(wave.Initialize(), 0U);
    WaveFileReadHelper copy(wave.Helper());
    unsigned char block[80];
    unsigned long long size = 0;
    std::string read;
    for (WaveFileReadHelper* const helper : {&copy, &wave.Helper(), &copy}) {
        ASSERT_EQ(helper->GetWaveData(block, &size, sizeof block, 10), 0U);
        read.append(block, block + size);
    }
    EXPECT_EQ(read, data);
}

}  // namespace
}  // namespace velm
