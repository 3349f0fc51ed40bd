#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "velm/AudioFrameStream.h"

namespace velm {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Numbers = std::vector<unsigned int>;

constexpr unsigned int kFrameSamples = 16;  // of 4 bytes: a frame is full of one number
constexpr unsigned int kOfEachKind = 3;     // threads that push, and that take

struct Soak {
    AudioFrameStream stream{kFrameSamples, 4, 2, 16};
    Numbers pushed[kOfEachKind];
    Numbers taken[kOfEachKind];

    void Push(Numbers& numbers, unsigned int number, bool back) {
        Numbers frame(kFrameSamples, number);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        if (!(back ? stream.PushBackFrame(samples) : stream.PushFrontFrame(samples)).IsFailed()) {
            numbers.push_back(number);
        }
    }

    void Take(Numbers& numbers, bool front) {
        Numbers frame(kFrameSamples);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        if (!(front ? stream.TakeFrontFrame(samples) : stream.TakeBackFrame(samples)).IsFailed()) {
            EXPECT_EQ(std::count(frame.begin(), frame.end(), frame[0]), kFrameSamples) << "a torn frame";
            numbers.push_back(frame[0]);
        }
    }

    /// Threads at work, let go by force while they are, until they are told to stop and have left.
    void Work(bool bothEnds) {
        std::atomic<bool> stop{false};
        std::atomic<unsigned int> running{2 * kOfEachKind};
        std::vector<std::thread> threads;
        for (unsigned int who = 0; who < kOfEachKind; ++who) {
            threads.emplace_back([&, who] {
                for (unsigned int i = 0; !stop; ++i) {
                    Push(pushed[who], who << 28 | i, !bothEnds || i % 3 != 0);
                }
                --running;
            });
            threads.emplace_back([&, who] {
                for (unsigned int i = 0; !stop; ++i) {
                    Take(taken[who], !bothEnds || i % 5 != 0);
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
        for (std::thread& thread : threads) {
            thread.join();
        }
        for (const Numbers& all : taken) {
            for (unsigned int producer = 0; producer < kOfEachKind && !bothEnds; ++producer) {
                Numbers ofOne(all);
                std::erase_if(ofOne, [=](unsigned int number) { return number >> 28 != producer; });
                EXPECT_TRUE(std::is_sorted(ofOne.begin(), ofOne.end())) << "out of order";
            }
        }
    }

    /// Ends the stream while a thread is blocked on one side, with what is left taken out.
    void End(bool full) {
        while (stream.GetUsedFrameSize() != 0) {
            Take(taken[0], true);
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

/// All the numbers in order; there are none left then.
Numbers Drain(Numbers (&lists)[kOfEachKind]) {
    Numbers all;
    for (Numbers& list : lists) {
        all.insert(all.end(), list.begin(), list.end());
        list.clear();
    }
    std::sort(all.begin(), all.end());
    return all;
}

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
        const Numbers taken = Drain(soak.taken);
        ASSERT_EQ(Drain(soak.pushed), taken);
        frames += taken.size();
    }
    EXPECT_GT(frames, 0U);
    std::printf("%u rounds, %zu frames\n", rounds, frames);
}

}  // namespace
}  // namespace velm
