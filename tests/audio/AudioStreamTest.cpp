#include "velm/AudioStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <iterator>

#include "Random.h"

namespace velm::audio_stream_test {

using Bytes = std::vector<unsigned char>;

/// Runs the operations in random order on the ring and on a plain queue of bytes.
void RunRandomly(std::mt19937& random, unsigned int capacity, unsigned int channels, unsigned int bits) {
    AudioStream stream(capacity, channels, bits);
    ASSERT_EQ(stream.Initialize(), 0U);
    const unsigned int sampleSize = bits / 8 * channels;
    const std::size_t most = (capacity - 1) * sampleSize;
    std::deque<unsigned char> queue;
    Bytes data;
    unsigned int samples = 0;
    const std::function<ErrorCode()> operations[] = {
        [&] { return stream.PushBackSamples(data.data(), samples); },
        [&] { return stream.PushFrontSamples(data.data(), samples); },
        [&] { return stream.TakeBackSamples(samples, data.data()); },
        [&] { return stream.TakeFrontSamples(samples, data.data()); },
        [&] { return stream.PushBackClearSamples(samples); },
        [&] { return stream.PushFrontClearSamples(samples); },
        [&] { return stream.DropBackSamples(samples); },
        [&] { return stream.DropFrontSamples(samples); },
    };
    for (int step = 0; step < 3'000; ++step) {
        if (step % 400 == 0) {
            ASSERT_EQ(stream.DropAllSamples(), 0U);
            queue.clear();
        }
        samples = std::uniform_int_distribution(0U, capacity)(random);
        data = test::RandomBytes(samples * sampleSize, static_cast<unsigned int>(random()));
        Bytes expected(data);
        const auto operation = random() % std::size(operations);
        SCOPED_TRACE(testing::Message() << "step " << step << " operation " << operation);
        const bool front = operation % 2 != 0;
        const bool takes = operation % 4 >= 2;
        const bool noData = operation >= 4;
        const auto size = static_cast<std::ptrdiff_t>(data.size());
        const bool fits = takes ? data.size() <= queue.size() : queue.size() + data.size() <= most;
        if (fits && takes) {
            const auto first = front ? queue.begin() : queue.end() - size;
            std::copy_n(first, noData ? 0 : size, expected.begin());
            queue.erase(first, first + size);
        } else if (fits) {
            const Bytes pushed = noData ? Bytes(data.size()) : data;
            queue.insert(front ? queue.begin() : queue.end(), pushed.begin(), pushed.end());
        }
        ASSERT_EQ(operations[operation](), fits ? 0U : VELM_ERROR_UTIL_UNKNOWN);
        ASSERT_EQ(data, expected);
        ASSERT_EQ(stream.GetUsedSampleByteSize(), queue.size());
        ASSERT_EQ(stream.GetFreeSampleByteSize(), most - queue.size());
        ASSERT_EQ(stream.GetUsedSampleSize(), queue.size() / sampleSize);
        ASSERT_EQ(stream.GetFreeSampleSize(), (most - queue.size()) / sampleSize);
    }
}

TEST(AudioStream, MatchesAQueueOfBytes) {
    std::mt19937 random = test::SeededRandom();
    const unsigned int shapes[][3] = {{1, 1, 8},   {4, 2, 16},  {8, 2, 16},
                                      {37, 2, 24}, {64, 6, 32}, {481, 1, 15}};
    for (const auto& [capacity, channels, bits] : shapes) {
        SCOPED_TRACE(testing::Message() << capacity << " samples, " << channels << " x " << bits << " bits");
        RunRandomly(random, capacity, channels, bits);
    }
}

TEST(AudioStream, FailsWithoutStorageOrData) {
    unsigned char data[3] = {1, 2, 3};
    AudioStream used(4, 1, 8);
    EXPECT_EQ(used.PushBackSamples(nullptr, 1), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(used.PushBackSamples(nullptr, 0), 0U);
    ASSERT_EQ(used.PushBackSamples(data, 3), 0U);
    EXPECT_EQ(used.TakeFrontSamples(1, nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(used.TakeFrontSamples(0, nullptr), 0U);
    used.Terminate();
    EXPECT_EQ(used.GetUsedSampleSize(), 3U);
    AudioStream shapes[] = {{0, 2, 16}, {8, 0, 16}, {8, 2, 7}, {0x80000000, 1, 16}, {3, 0x80000000, 16}};
    for (AudioStream* const stream : {&used, &shapes[0], &shapes[1], &shapes[2], &shapes[3], &shapes[4]}) {
        SCOPED_TRACE(stream - shapes);
        EXPECT_EQ(stream->Initialize(), VELM_ERROR_UTIL_NOT_INITIALIZED);
        EXPECT_EQ(stream->PushBackSamples(data, 1), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream->PushFrontClearSamples(0), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream->TakeFrontSamples(0, data), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream->DropAllSamples(), VELM_ERROR_UTIL_UNKNOWN);
    }
    EXPECT_EQ(shapes[0].GetFreeSampleSize(), 0U);
}

}  // namespace velm::audio_stream_test
