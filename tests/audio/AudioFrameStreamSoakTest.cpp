#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

#include "velm/AudioFrameStream.h"

namespace velm {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Numbers = std::vector<unsigned int>;

constexpr unsigned int kFrameSamples = 16;  // of 4 bytes: a frame is full of one number

struct Soak {
    AudioFrameStream stream{kFrameSamples, 4, 2, 16};
    std::atomic<bool> stop{false};
    std::atomic<int> running{0};
    std::mutex mutex;  // guards the two below
    Numbers pushed;
    Numbers taken;

    bool Push(unsigned int number, bool back) {
        Numbers frame(kFrameSamples, number);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        return !(back ? stream.PushBackFrame(samples) : stream.PushFrontFrame(samples)).IsFailed();
    }

    bool Take(Numbers& numbers, bool front) {
        Numbers frame(kFrameSamples);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        if ((front ? stream.TakeFrontFrame(samples) : stream.TakeBackFrame(samples)).IsFailed()) {
            return false;
        }
        EXPECT_EQ(std::count(frame.begin(), frame.end(), frame[0]), kFrameSamples) << "a torn frame";
        numbers.push_back(frame[0]);
        return true;
    }

    void Keep(Numbers& all, const Numbers& own) {
        const std::lock_guard lock(mutex);
        all.insert(all.end(), own.begin(), own.end());
    }

    void Produce(unsigned int producer, bool bothEnds) {
        Numbers own;
        for (unsigned int i = 0; !stop; ++i) {
            if (Push(producer << 28 | i, !bothEnds || i % 3 != 0)) {
                own.push_back(producer << 28 | i);
            }
        }
        Keep(pushed, own);
        --running;
    }

    void Consume(bool bothEnds) {
        Numbers own;
        for (unsigned int i = 0; !stop; ++i) {
            Take(own, !bothEnds || i % 5 != 0);
        }
        for (unsigned int producer = 0; producer < 3 && !bothEnds; ++producer) {
            Numbers ofOne;
            std::copy_if(own.begin(), own.end(), std::back_inserter(ofOne),
                         [&](unsigned int n) { return n >> 28 == producer; });
            EXPECT_TRUE(std::is_sorted(ofOne.begin(), ofOne.end())) << "out of order";
        }
        Keep(taken, own);
        --running;
    }

    /// Threads at work, let go by force while they are, until they are told to stop and have left.
    void Work(bool bothEnds) {
        stop = false;
        running = 6;
        std::vector<std::thread> threads;
        for (unsigned int i = 0; i < 3; ++i) {
            threads.emplace_back([=, this] { Produce(i, bothEnds); });
            threads.emplace_back([=, this] { Consume(bothEnds); });
        }
        for (const auto end = Clock::now() + 100ms; running != 0; stop = Clock::now() > end) {
            stream.UnlockForce();
            EXPECT_LE(stream.GetUsedFrameSize(), 5U);
            EXPECT_LE(stream.GetFreeFrameSize(), 5U);
            std::this_thread::sleep_for(200us);
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    /// Ends the stream while a thread is blocked on one side, with what is left taken out.
    void End(bool full) {
        while (stream.GetUsedFrameSize() != 0) {
            Take(taken, true);
        }
        // What force has left over lets it through first, so it goes on until it no longer comes back.
        std::atomic<int> entered{0};
        std::atomic<bool> ends{false};
        std::thread blocked([&] {
            while (!ends) {
                ++entered;
                full ? stream.PushBackClearFrame() : stream.DropFrontFrame();
            }
        });
        for (int before = -1; before != entered;) {
            before = entered;
            std::this_thread::sleep_for(20ms);
        }
        ends = true;
        stream.Terminate();
        blocked.join();
        stream.DropAllFrame();
    }
};

// VELM_SOAK_SECONDS makes it longer.
TEST(AudioFrameStreamSoak, NothingIsLostOrTornThroughForceEndsAndNewBeginnings) {
    const char* const given = std::getenv("VELM_SOAK_SECONDS");
    const auto end = Clock::now() + std::chrono::seconds(given != nullptr ? std::atoi(given) : 2);
    Soak soak;
    unsigned int rounds = 0;
    std::size_t frames = 0;
    for (; Clock::now() < end; ++rounds) {
        ASSERT_EQ(soak.stream.Initialize(), 0U);
        soak.Work(rounds % 2 != 0);
        soak.End(rounds % 4 < 2);
        std::sort(soak.pushed.begin(), soak.pushed.end());
        std::sort(soak.taken.begin(), soak.taken.end());
        ASSERT_EQ(soak.pushed, soak.taken);
        frames += soak.taken.size();
        soak.pushed.clear();
        soak.taken.clear();
    }
    EXPECT_GT(frames, 0U);
    std::printf("%u rounds, %zu frames\n", rounds, frames);
}

}  // namespace
}  // namespace velm
