#include "velm/AudioFrameStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>
#include <vector>

namespace velm {
namespace {

using namespace std::chrono_literals;

using Frame = std::vector<short>;

constexpr unsigned int kSamples = 4;  // of a frame, mono, 16 bits

Frame FrameOf(short value) {
    return Frame(kSamples, value);
}

Frame TakeFront(AudioFrameStream& stream) {
    Frame frame = FrameOf(-1);
    EXPECT_EQ(stream.TakeFrontFrame(frame.data()), 0U);
    return frame;
}

/// Runs an operation on a thread of its own, for as long as it blocks.
class Blocked {
public:
    template <typename Operation>
    explicit Blocked(Operation operation) : m_result(std::async(std::launch::async, operation)) {
        EXPECT_EQ(m_result.wait_for(30ms), std::future_status::timeout) << "does not block";
    }

    ErrorCode Result() { return m_result.get(); }

private:
    std::future<ErrorCode> m_result;
};

TEST(AudioFrameStream, MovesWholeFramesAtBothEndsAndWaitsForThem) {
    AudioFrameStream stream(kSamples, 4, 1, 16);
    ASSERT_EQ(stream.Initialize(), 0U);
    for (short value = 1; value <= 3; ++value) {
        ASSERT_EQ(stream.PushBackFrame(FrameOf(value).data()), 0U);
    }
    ASSERT_EQ(stream.PushFrontFrame(FrameOf(9).data()), 0U);
    EXPECT_EQ(stream.GetUsedFrameSize(), 4U);
    EXPECT_EQ(stream.GetFreeFrameSize(), 0U);
    EXPECT_EQ(TakeFront(stream), FrameOf(9));
    Frame newest = FrameOf(0);
    ASSERT_EQ(stream.TakeBackFrame(newest.data()), 0U);
    EXPECT_EQ(newest, FrameOf(3));
    ASSERT_EQ(stream.DropFrontFrame(), 0U);
    ASSERT_EQ(stream.PushFrontClearFrame(), 0U);
    ASSERT_EQ(stream.PushAllClearFrame(), 0U);
    EXPECT_EQ(stream.GetUsedFrameSize(), 4U);
    EXPECT_EQ(stream.PushBackFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM) << "without waiting";
    EXPECT_EQ(stream.PushFrontFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    Blocked push([&] { return stream.PushBackFrame(FrameOf(7).data()); });
    ASSERT_EQ(stream.DropBackFrame(), 0U);
    EXPECT_EQ(push.Result(), 0U);
    EXPECT_EQ(TakeFront(stream), FrameOf(0));
    ASSERT_EQ(stream.TakeBackFrame(newest.data()), 0U);
    EXPECT_EQ(newest, FrameOf(7));
    EXPECT_EQ(stream.DropAllFrame(), 0U);
    EXPECT_EQ(stream.GetUsedFrameSize(), 0U);
    EXPECT_EQ(stream.TakeFrontFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM) << "without waiting";
    EXPECT_EQ(stream.TakeBackFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    Blocked take([&] { return stream.TakeFrontFrame(newest.data()); });
    ASSERT_EQ(stream.PushFrontFrame(FrameOf(8).data()), 0U);
    EXPECT_EQ(take.Result(), 0U);
    EXPECT_EQ(newest, FrameOf(8));
}

TEST(AudioFrameStream, ArgumentsWithoutMeaningNeverHang) {
    const unsigned int shapes[][4] = {
        {0, 4, 2, 16}, {4, 4, 0, 16}, {0xFFFFFFFF, 4, 2, 16}, {65536, 65535, 1, 8}, {480, 0xFFFFFFFF, 2, 16}};
    for (const auto& [samples, frames, channels, bits] : shapes) {
        AudioFrameStream stream(samples, frames, channels, bits);
        EXPECT_EQ(stream.PushBackClearFrame(), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream.Initialize(), VELM_ERROR_UTIL_NOT_INITIALIZED);
        EXPECT_EQ(stream.DropFrontFrame(), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream.PushAllClearFrame(), 0U);
        EXPECT_EQ(stream.DropAllFrame(), 0U);
        EXPECT_EQ(stream.GetUsedFrameSize(), 0U);
    }
    AudioFrameStream none(480, 0, 2, 16);
    EXPECT_EQ(none.Initialize(), 0U);
    EXPECT_EQ(none.PushBackClearFrame(), VELM_ERROR_UTIL_UNKNOWN);
    EXPECT_EQ(none.DropFrontFrame(), VELM_ERROR_UTIL_UNKNOWN);
}

TEST(AudioFrameStream, ForceLetsOneThreadOfEachSideGoAndTheEndAll) {
    for (const bool full : {false, true}) {
        SCOPED_TRACE(full);
        AudioFrameStream stream(kSamples, 2, 1, 16);
        ASSERT_EQ(stream.Initialize(), 0U);
        if (full) {
            ASSERT_EQ(stream.PushAllClearFrame(), 0U);
        }
        const auto wait = [&] { return full ? stream.PushBackClearFrame() : stream.DropFrontFrame(); };
        stream.UnlockForce();  // lets the next through, as nobody waits, and only that
        EXPECT_EQ(wait(), VELM_ERROR_UTIL_UNKNOWN);
        Blocked forced(wait);
        stream.UnlockForce();
        EXPECT_EQ(forced.Result(), VELM_ERROR_UTIL_UNKNOWN);
        if (!full) {
            Blocked renewed(wait);
            ASSERT_EQ(stream.Initialize(), 0U) << "once more, which nobody should do";
            EXPECT_EQ(renewed.Result(), VELM_ERROR_UTIL_UNKNOWN);
        }
        Blocked ended(wait);
        stream.Terminate();
        EXPECT_EQ(ended.Result(), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(wait(), VELM_ERROR_UTIL_UNKNOWN);
    }
}

TEST(AudioFrameStream, ForceOnAHalfFullRingIsKeptForLater) {
    AudioFrameStream stream(kSamples, 2, 1, 16);
    ASSERT_EQ(stream.Initialize(), 0U);
    ASSERT_EQ(stream.PushBackClearFrame(), 0U);
    stream.UnlockForce();
    EXPECT_EQ(stream.DropFrontFrame(), 0U);
    EXPECT_EQ(stream.DropFrontFrame(), VELM_ERROR_UTIL_UNKNOWN);
    Blocked spent([&] { return stream.DropFrontFrame(); });
    stream.UnlockForce();
    EXPECT_EQ(spent.Result(), VELM_ERROR_UTIL_UNKNOWN);
}

// A taker that waits for the ring while a long push holds it, and the end in between.
TEST(AudioFrameStream, TheEndLetsNobodyInBesideThePush) {
    constexpr unsigned int kLong = 8 << 20;
    Frame frames[] = {Frame(kLong, 1), Frame(kLong, 2), Frame(kLong)};
    AudioFrameStream stream(kLong, 2, 1, 16);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        ASSERT_EQ(stream.Initialize(), 0U);
        ASSERT_EQ(stream.PushBackFrame(frames[0].data()), 0U);
        std::atomic<int> entering{0};
        auto push = std::async(std::launch::async, [&] {
            ++entering;
            return stream.PushFrontFrame(frames[1].data());
        });
        for (; entering != 1; std::this_thread::yield()) {
        }
        auto take = std::async(std::launch::async, [&] {
            ++entering;
            return stream.TakeFrontFrame(frames[2].data());
        });
        for (; entering != 2; std::this_thread::yield()) {
        }
        std::this_thread::sleep_for(1ms);
        stream.Terminate();
        std::vector<int> expected = {1};
        if (push.get() == 0) {
            expected.push_back(2);
        }
        std::vector<int> found;
        for (ErrorCode taken = take.get(); taken == 0 || found.empty();) {
            if (taken == 0) {
                EXPECT_EQ(frames[2].front(), frames[2].back()) << "torn";
                found.push_back(frames[2].front());
            }
            taken = stream.TakeFrontFrame(frames[2].data());
        }
        std::sort(found.begin(), found.end());
        ASSERT_EQ(found, expected) << "lost or doubled";
    }
}

}  // namespace
}  // namespace velm
