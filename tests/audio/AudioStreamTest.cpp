#include "velm/AudioStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <vector>

#include "Pattern.h"
#include "RandomSeed.h"

namespace velm {
namespace {

using Bytes = std::vector<unsigned char>;

/// The ring as a plain queue of bytes.
class Model {
public:
    Model(std::size_t capacity, std::size_t sampleSize) : m_most((capacity - 1) * sampleSize) {}

    bool Push(const Bytes& data, bool front) {
        if (m_bytes.size() + data.size() > m_most) {
            return false;
        }
        m_bytes.insert(front ? m_bytes.begin() : m_bytes.end(), data.begin(), data.end());
        return true;
    }

    bool Take(Bytes& data, bool back) {
        if (data.size() > m_bytes.size()) {
            return false;
        }
        const auto first = back ? m_bytes.end() - static_cast<std::ptrdiff_t>(data.size()) : m_bytes.begin();
        const auto last = first + static_cast<std::ptrdiff_t>(data.size());
        std::copy(first, last, data.begin());
        m_bytes.erase(first, last);
        return true;
    }

    std::size_t Size() const { return m_bytes.size(); }
    std::size_t Free() const { return m_most - m_bytes.size(); }

private:
    std::deque<unsigned char> m_bytes;
    std::size_t m_most;
};

void RunRandomly(std::mt19937& random, unsigned int capacity, unsigned int channels, unsigned int bits) {
    AudioStream stream(capacity, channels, bits);
    ASSERT_EQ(stream.Initialize(), 0U);
    const unsigned int sampleSize = bits / 8 * channels;
    Model model(capacity, sampleSize);
    for (int step = 0; step < 3'000; ++step) {
        const unsigned int samples = std::uniform_int_distribution(0U, capacity)(random);
        Bytes data = test::Pattern(samples * sampleSize, static_cast<unsigned int>(random()));
        Bytes expected(data);
        const Bytes silence(data.size(), 0);
        bool modelled = false;
        ErrorCode result;
        const auto operation = static_cast<unsigned int>(random() % 9);
        switch (operation) {
            case 0:
                modelled = model.Push(data, false);
                result = stream.PushBackSamples(data.data(), samples);
                break;
            case 1:
                modelled = model.Push(data, true);
                result = stream.PushFrontSamples(data.data(), samples);
                break;
            case 2:
                modelled = model.Push(silence, false);
                result = stream.PushBackClearSamples(samples);
                break;
            case 3:
                modelled = model.Push(silence, true);
                result = stream.PushFrontClearSamples(samples);
                break;
            case 4:
                modelled = model.Take(expected, false);
                result = stream.TakeFrontSamples(samples, data.data());
                break;
            case 5:
                modelled = model.Take(expected, true);
                result = stream.TakeBackSamples(samples, data.data());
                break;
            case 6:
                modelled = model.Take(expected, false);
                expected = data;
                result = stream.DropFrontSamples(samples);
                break;
            case 7:
                modelled = model.Take(expected, true);
                expected = data;
                result = stream.DropBackSamples(samples);
                break;
            default:
                if (step % 50 == 0) {
                    model = Model(capacity, sampleSize);
                    result = stream.DropAllSamples();
                }
                modelled = true;
                break;
        }
        ASSERT_EQ(result, modelled ? 0U : VELM_ERROR_UTIL_UNKNOWN)
            << "operation " << operation << " step " << step;
        ASSERT_EQ(data, expected) << "operation " << operation << " step " << step;
        ASSERT_EQ(stream.GetUsedSampleByteSize(), model.Size());
        ASSERT_EQ(stream.GetFreeSampleByteSize(), model.Free());
        ASSERT_EQ(stream.GetUsedSampleSize(), model.Size() / sampleSize);
        ASSERT_EQ(stream.GetFreeSampleSize(), model.Free() / sampleSize);
    }
}

TEST(AudioStream, DoesWhatAQueueOfBytesWouldDo) {
    std::mt19937 random = test::SeededRandom();
    const unsigned int shapes[][3] = {{1, 1, 8},   {2, 1, 8},   {4, 2, 16},  {8, 2, 16},
                                      {37, 2, 24}, {64, 6, 32}, {481, 1, 15}};
    for (const auto& [capacity, channels, bits] : shapes) {
        SCOPED_TRACE(testing::Message() << capacity << " samples, " << channels << " x " << bits << " bits");
        RunRandomly(random, capacity, channels, bits);
    }
}

TEST(AudioStream, ArgumentsWithoutMeaningGiveNoStorageAndNoCrash) {
    const unsigned int shapes[][3] = {
        {0, 2, 16},          {8, 0, 16},          {8, 2, 7},
        {0x80000000, 1, 16}, {65536, 65536, 8},   {1, 0xFFFFFFFF, 0xFFFFFFFF},
        {0xFFFFFFFF, 2, 16}, {3, 0x80000000, 16},
    };
    for (const auto& [capacity, channels, bits] : shapes) {
        SCOPED_TRACE(testing::Message() << capacity << " samples, " << channels << " x " << bits << " bits");
        AudioStream stream(capacity, channels, bits);
        unsigned char byte = 0;
        EXPECT_EQ(stream.Initialize(), VELM_ERROR_UTIL_NOT_INITIALIZED);
        for (const unsigned int samples : {0U, 1U}) {
            EXPECT_EQ(stream.PushBackSamples(&byte, samples), VELM_ERROR_UTIL_UNKNOWN);
            EXPECT_EQ(stream.PushFrontSamples(&byte, samples), VELM_ERROR_UTIL_UNKNOWN);
            EXPECT_EQ(stream.PushBackClearSamples(samples), VELM_ERROR_UTIL_UNKNOWN);
            EXPECT_EQ(stream.PushFrontClearSamples(samples), VELM_ERROR_UTIL_UNKNOWN);
            EXPECT_EQ(stream.TakeFrontSamples(samples, &byte), VELM_ERROR_UTIL_UNKNOWN);
            EXPECT_EQ(stream.TakeBackSamples(samples, &byte), VELM_ERROR_UTIL_UNKNOWN);
            EXPECT_EQ(stream.DropFrontSamples(samples), VELM_ERROR_UTIL_UNKNOWN);
            EXPECT_EQ(stream.DropBackSamples(samples), VELM_ERROR_UTIL_UNKNOWN);
        }
        EXPECT_EQ(stream.DropAllSamples(), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream.GetUsedSampleSize(), 0U);
    }
}

TEST(AudioStream, NullDataAndTermination) {
    AudioStream stream(4, 1, 8);
    unsigned char data[3] = {1, 2, 3};
    EXPECT_EQ(stream.PushBackSamples(nullptr, 1), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(stream.PushFrontSamples(nullptr, 1), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(stream.PushBackSamples(nullptr, 0), 0U);
    ASSERT_EQ(stream.PushBackSamples(data, 3), 0U);
    EXPECT_EQ(stream.TakeFrontSamples(1, nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(stream.TakeBackSamples(1, nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(stream.GetUsedSampleSize(), 3U);

    stream.Terminate();
    EXPECT_EQ(stream.Initialize(), VELM_ERROR_UTIL_NOT_INITIALIZED);
    EXPECT_EQ(stream.TakeFrontSamples(1, data), VELM_ERROR_UTIL_UNKNOWN);
    EXPECT_EQ(stream.GetUsedSampleSize(), 3U);
    EXPECT_EQ(stream.GetFreeSampleSize(), 0U);
}

}  // namespace
}  // namespace velm
