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
using SoakFrame = std::vector<unsigned int>;

constexpr unsigned int kFrameSamples = 16;  // of 4 bytes: a frame is full of one number

struct Soak {
    AudioFrameStream stream{kFrameSamples, 4, 2, 16};
    std::atomic<unsigned long long> pushed{0};
    std::atomic<unsigned long long> taken{0};
    std::atomic<unsigned long long> difference{0};  // of the sums of all numbers; each is there once

    void Push(unsigned int number) {
        SoakFrame frame(kFrameSamples, number);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        if (!(number % 3 != 0 ? stream.PushBackFrame(samples) : stream.PushFrontFrame(samples)).IsFailed()) {
            ++pushed;
            difference += number;
        }
    }

    void Take(bool front) {
        SoakFrame frame(kFrameSamples);
        auto* const samples = reinterpret_cast<short*>(frame.data());
        if (!(front ? stream.TakeFrontFrame(samples) : stream.TakeBackFrame(samples)).IsFailed()) {
            EXPECT_EQ(std::count(frame.begin(), frame.end(), frame[0]), kFrameSamples) << "a torn frame";
            ++taken;
            difference -= frame[0];
        }
    }

    /// Threads at work, let go by force while they are, until they are told to stop and have left.
    void Work() {
        std::atomic<bool> stop{false};
        std::atomic<int> running{6};
        std::vector<std::thread> threads;
        for (unsigned int who = 0; who < 3; ++who) {
            threads.emplace_back([&, who] {
                for (unsigned int i = 0; !stop; ++i) {
                    Push(who << 28 | i);
                }
                --running;
            });
            threads.emplace_back([&] {
                for (unsigned int i = 0; !stop; ++i) {
                    Take(i % 5 != 0);
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
        while (stream.GetUsedFrameSize() != 0) {
            Take(true);
        }
    }

    /// Ends the stream while a thread is blocked on one side.
    void End(bool full) {
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
    for (; Clock::now() < end; ++rounds) {
        ASSERT_EQ(soak.stream.Initialize(), 0U);
        soak.Work();
        soak.End(rounds % 2 != 0);
        ASSERT_EQ(soak.taken, soak.pushed);
        ASSERT_EQ(soak.difference, 0U);
    }
    EXPECT_GT(soak.taken, 0U);
    std::printf("%u rounds, %llu frames\n", rounds, soak.taken.load());
}

}  // namespace
}  // namespace velm
