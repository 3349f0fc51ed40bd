#include "velm/AudioFrameStream.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include "Random.h"

#ifndef _WIN32
#include <dlfcn.h>
#include <sys/mman.h>
#include <csignal>
#endif

using namespace std::chrono_literals;

static std::atomic<bool> g_wakesAreSlow{false};

#ifndef _WIN32
// On Linux a program can replace the functions that its libraries call.
void WakeByAddressSingle(void* address) {
    reinterpret_cast<decltype(&WakeByAddressSingle)>(dlsym(RTLD_NEXT, __func__))(address);
    if (g_wakesAreSlow) {
        std::this_thread::sleep_for(20ms);
    }
}
#endif

namespace velm::audio_frame_stream_test {

using Clock = std::chrono::steady_clock;
using Frame = std::vector<short>;

constexpr unsigned int kSamples = 4;  // per frame; mono, 16 bits
constexpr unsigned int kFrames = 4;

Frame FrameOf(int value) {
    return Frame(kSamples, static_cast<short>(value));
}

/// A ring, and the operations that push and take one frame: with and without data, at the back and the front.
struct Ring {
    Ring() { EXPECT_EQ(stream.Initialize(), 0U); }

    AudioFrameStream stream{kSamples, kFrames, 1, 16};
    Frame frame = FrameOf(0);  // pushed or taken
    const std::function<ErrorCode()> pushes[4] = {[this] { return stream.PushBackFrame(frame.data()); },
                                                  [this] { return stream.PushFrontFrame(frame.data()); },
                                                  [this] { return stream.PushBackClearFrame(); },
                                                  [this] { return stream.PushFrontClearFrame(); }};
    const std::function<ErrorCode()> takes[4] = {[this] { return stream.TakeBackFrame(frame.data()); },
                                                 [this] { return stream.TakeFrontFrame(frame.data()); },
                                                 [this] { return stream.DropBackFrame(); },
                                                 [this] { return stream.DropFrontFrame(); }};
};

/// An operation that blocks, on a thread of its own.
class Blocked {
public:
    template <typename Operation>
    explicit Blocked(Operation operation) : m_result(std::async(std::launch::async, operation)) {
        EXPECT_TRUE(Blocks());
    }

    bool Blocks() { return m_result.wait_for(60ms) == std::future_status::timeout; }
    ErrorCode Result() { return m_result.get(); }

private:
    std::future<ErrorCode> m_result;
};

TEST(AudioFrameStream, MatchesAQueueOfFrames) {
    std::mt19937 random = test::SeededRandom();
    Ring ring;
    std::deque<int> queue;
    for (int step = 1; step < 1000; ++step) {
        const bool push = queue.empty() || (queue.size() < kFrames && random() % 2 == 0);
        const auto which = random() % 4;
        const bool front = which % 2 != 0;
        SCOPED_TRACE(testing::Message() << step << (push ? " push " : " take ") << which);
        int expected = step;
        if (push) {
            queue.insert(front ? queue.begin() : queue.end(), which < 2 ? step : 0);
        } else {
            expected = which < 2 ? (front ? queue.front() : queue.back()) : step;
            queue.erase(front ? queue.begin() : queue.end() - 1);
        }
        ring.frame = FrameOf(step);
        ASSERT_EQ((push ? ring.pushes : ring.takes)[which](), 0U);
        ASSERT_EQ(ring.frame, FrameOf(expected));
        ASSERT_EQ(ring.stream.GetUsedFrameSize(), queue.size());
        ASSERT_EQ(ring.stream.GetFreeFrameSize(), kFrames - queue.size());
    }
    EXPECT_EQ(ring.stream.DropAllFrame(), 0U);
    EXPECT_EQ(ring.stream.GetUsedFrameSize(), 0U);
    EXPECT_EQ(ring.stream.PushAllClearFrame(), 0U);
    EXPECT_EQ(ring.stream.GetFreeFrameSize(), 0U);
}

TEST(AudioFrameStream, BlocksWhileFullOrEmpty) {
    for (int which = 0; which < 4; ++which) {
        SCOPED_TRACE(which);
        Ring ring;
        Blocked take(ring.takes[which]);
        EXPECT_EQ(ring.stream.PushBackClearFrame(), 0U);
        EXPECT_EQ(take.Result(), 0U);
        EXPECT_EQ(ring.stream.TakeFrontFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
        EXPECT_EQ(ring.stream.TakeBackFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
        EXPECT_EQ(ring.stream.PushAllClearFrame(), 0U);
        Blocked push(ring.pushes[which]);
        EXPECT_EQ(ring.stream.DropFrontFrame(), 0U);
        EXPECT_EQ(push.Result(), 0U);
        EXPECT_EQ(ring.stream.PushFrontFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
        EXPECT_EQ(ring.stream.PushBackFrame(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    }
}

TEST(AudioFrameStream, NeverHangsWithUnusableDimensions) {
    const unsigned int shapes[][4] = {
        {0, 4, 2, 16},  {4, 4, 0, 16}, {0xFFFFFFFF, 4, 2, 16}, {65536, 65535, 1, 8}, {480, 0xFFFFFFFF, 2, 16},
        {480, 0, 2, 16}};
    for (const auto& [samples, frames, channels, bits] : shapes) {
        SCOPED_TRACE(testing::Message() << samples << " x " << frames << ", " << channels << " x " << bits);
        AudioFrameStream stream(samples, frames, channels, bits);
        EXPECT_EQ(stream.PushBackClearFrame(), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream.Initialize(), frames == 0 ? 0U : VELM_ERROR_UTIL_NOT_INITIALIZED);
        EXPECT_EQ(stream.PushBackClearFrame(), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream.DropFrontFrame(), VELM_ERROR_UTIL_UNKNOWN);
        EXPECT_EQ(stream.PushAllClearFrame(), 0U);
        EXPECT_EQ(stream.DropAllFrame(), 0U);
        EXPECT_EQ(stream.GetUsedFrameSize(), 0U);
    }
}

TEST(AudioFrameStream, UnlockForceFreesOneThreadAndTerminateAll) {
    for (const bool full : {false, true}) {
        SCOPED_TRACE(full ? "pushes" : "takes");
        Ring ring;
        const auto& wait = full ? ring.pushes[2] : ring.takes[2];
        if (full) {
            ASSERT_EQ(ring.stream.PushAllClearFrame(), 0U);
        }
        ring.stream.UnlockForce();  // nobody is blocked: releases the next thread, and only that one
        EXPECT_EQ(wait(), VELM_ERROR_UTIL_UNKNOWN);
        Blocked forced(wait);
        ring.stream.UnlockForce();
        EXPECT_EQ(forced.Result(), VELM_ERROR_UTIL_UNKNOWN);
        Blocked ended[] = {Blocked(wait), Blocked(wait)};
        // A thread that reached the ring would succeed: there is room or a frame, and the lock is free.
        full ? ring.stream.DropAllSamples() : ring.stream.PushBackClearSamples(kSamples);
        g_wakesAreSlow = true;
        const auto begin = Clock::now();
        ring.stream.Terminate();
        g_wakesAreSlow = false;
        EXPECT_GE(Clock::now() - begin, 49ms) << "the threads had no time to leave";
        for (Blocked& thread : ended) {
            EXPECT_EQ(thread.Result(), VELM_ERROR_UTIL_UNKNOWN);
        }
        EXPECT_EQ(ring.stream.GetUsedFrameSize(), full ? 0U : 1U);
        EXPECT_EQ(wait(), 0U) << "still blocks";
        EXPECT_EQ(wait(), full ? 0U : VELM_ERROR_UTIL_UNKNOWN);
    }
}

TEST(AudioFrameStream, UnlockForceReleasesTheNextToBlock) {
    Ring ring;
    ASSERT_EQ(ring.stream.PushBackClearFrame(), 0U);
    ring.stream.UnlockForce();
    EXPECT_EQ(ring.stream.DropFrontFrame(), 0U);
    EXPECT_EQ(ring.stream.DropFrontFrame(), VELM_ERROR_UTIL_UNKNOWN);
    Blocked renewed(ring.takes[0]);
    ASSERT_EQ(ring.stream.Initialize(), 0U) << "a second time, which is misuse";
    EXPECT_EQ(renewed.Result(), VELM_ERROR_UTIL_UNKNOWN);
}

#ifndef _WIN32
// A frame of one page; a thread that touches it is held up until g_released.
alignas(4096) short g_page[2048] = {};
std::atomic<bool> g_held{false};
std::atomic<bool> g_released{false};

void HoldUp(int) {
    for (g_held = true; !g_released;) {
        std::this_thread::yield();
    }
    mprotect(g_page, sizeof g_page, PROT_READ | PROT_WRITE);
}

// Terminate waits for a push in progress, unless it takes so long that its thread must be dead.
TEST(AudioFrameStream, TerminateAdmitsNobodyDuringAPush) {
    const auto handler = std::signal(SIGSEGV, &HoldUp);
    for (const bool killed : {false, true}) {
        SCOPED_TRACE(killed);
        AudioFrameStream stream(2048, 2, 1, 16);
        ASSERT_EQ(stream.Initialize(), 0U);
        ASSERT_EQ(stream.PushBackClearFrame(), 0U);
        g_held = g_released = false;
        ASSERT_EQ(mprotect(g_page, sizeof g_page, PROT_NONE), 0);
        const auto take = [&] { return stream.DropFrontFrame(); };
        Blocked push([&] { return stream.PushBackFrame(g_page); });
        while (!g_held) {
            std::this_thread::yield();
        }
        Blocked takes[] = {Blocked(take), Blocked(take)};  // one waits for the ring, one for a frame
        Blocked end([&] { return stream.Terminate(), ErrorCode(0); });
        EXPECT_TRUE(takes[0].Blocks() || takes[1].Blocks()) << "entered the ring during the push";
        if (killed) {
            end.Result();
        }
        g_released = true;
        EXPECT_EQ(push.Result(), 0U);
        const int failed = takes[0].Result().IsFailed() + takes[1].Result().IsFailed();
        EXPECT_GE(failed, 1) << "took a frame after Terminate released it";
        EXPECT_EQ(stream.GetUsedFrameSize(), static_cast<unsigned int>(failed));
    }
    std::signal(SIGSEGV, handler);
}
#endif

/// Threads that push and take frames, each filled with one number.
struct Soak {
    static constexpr unsigned int kNumbers = 16;

    AudioFrameStream stream{kNumbers, 4, 2, 16};
    std::atomic<unsigned int> difference{0};  // of the sums of the numbers pushed and taken
    std::atomic<unsigned long long> taken{0};

    void Push(unsigned int number) {
        std::vector<unsigned int> frame(kNumbers, number);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        const bool back = number % 3 != 0;
        const ErrorCode result = back ? stream.PushBackFrame(samples) : stream.PushFrontFrame(samples);
        difference += result == 0 ? number : 0;
    }

    void Take(bool front) {
        std::vector<unsigned int> frame(kNumbers);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        if ((front ? stream.TakeFrontFrame(samples) : stream.TakeBackFrame(samples)) == 0) {
            EXPECT_EQ(frame, std::vector<unsigned int>(kNumbers, frame[0])) << "torn";
            difference -= frame[0];
            ++taken;
        }
    }

    /// Runs the threads under constant UnlockForce, then stops and joins them.
    void Work() {
        std::atomic<bool> stop{false};
        std::atomic<int> running{6};
        std::vector<std::jthread> threads;
        for (unsigned int who = 0; who < 6; ++who) {
            threads.emplace_back([&, who] {
                for (unsigned int i = 0; !stop; ++i) {
                    who < 3 ? Push((who + 1) << 28 | i) : Take(i % 5 != 0);
                }
                --running;
            });
        }
        for (const auto end = Clock::now() + 100ms; running != 0; stop = Clock::now() > end) {
            stream.UnlockForce();
            EXPECT_LE(stream.GetUsedFrameSize(), 5U);
            EXPECT_LE(stream.GetFreeFrameSize(), 5U);
            std::this_thread::sleep_for(200us);
        }
        threads.clear();  // joins
        while (stream.GetUsedFrameSize() != 0) {
            Take(true);
        }
    }
};

// VELM_SOAK_SECONDS sets its length.
TEST(AudioFrameStreamSoak, NeverLosesOrTearsFrames) {
    const char* const given = std::getenv("VELM_SOAK_SECONDS");
    const auto end = Clock::now() + std::chrono::seconds(given != nullptr ? std::atoi(given) : 1);
    Soak soak;
    while (Clock::now() < end) {
        ASSERT_EQ(soak.stream.Initialize(), 0U);
        soak.Work();
        soak.stream.Terminate();
        ASSERT_EQ(soak.difference, 0U);
    }
    EXPECT_GT(soak.taken, 0U);
    std::printf("%llu frames\n", soak.taken.load());
}

}  // namespace velm::audio_frame_stream_test
