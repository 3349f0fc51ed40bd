#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/Mutex.h"
#include "velm/core/Semaphore.h"
#include "velm/core/SyncEvent.h"

namespace velm {
namespace {

using namespace std::chrono_literals;

TEST(Mutex, RefusesWhatItCannotDo) {
    Mutex mutex;
    EXPECT_EQ(mutex.Lock(), VELM_ERROR_CORE_NOT_INITIALIZED);
    EXPECT_EQ(mutex.Initialize(), 0U);
    EXPECT_EQ(mutex.Unlock(), VELM_ERROR_CORE_ILLEGAL_CALL);
    EXPECT_EQ(mutex.Lock(), 0U);
    EXPECT_EQ(mutex.Lock(), 0U);
    EXPECT_EQ(mutex.Unlock(), 0U);
    std::thread([&] { EXPECT_EQ(mutex.Unlock(), VELM_ERROR_CORE_ILLEGAL_CALL); }).join();
    EXPECT_EQ(mutex.Unlock(), 0U);
    EXPECT_EQ(mutex.Unlock(), VELM_ERROR_CORE_ILLEGAL_CALL);
}

TEST(Mutex, LetsOneThreadInAtATime) {
    constexpr int kRounds = 20'000;
    Mutex mutex;
    mutex.Initialize();
    long count = 0;
    const auto work = [&] {
        for (int i = 0; i < kRounds; ++i) {
            mutex.Lock();
            ++count;
            mutex.Unlock();
        }
    };
    std::thread other(work);
    work();
    other.join();
    EXPECT_EQ(count, 2 * kRounds);
}

TEST(Semaphore, NeverExceedsItsMaximum) {
    struct Case {
        unsigned int initial;
        unsigned int maximum;
        unsigned int post;
        bool accepted;
    };
    for (const Case& c :
         {Case{0, 4, 4, true}, Case{0, 4, 5, false}, Case{4, 4, 1, false}, Case{9, 4, 1, false},
          Case{3, 4, 1, true}, Case{0, 0, 1, false}, Case{1, 0xFFFFFFFF, 0x7FFFFFFE, true},
          Case{1, 0xFFFFFFFF, 0x7FFFFFFF, false}, Case{2, 4, 0xFFFFFFFF, false}}) {
        Semaphore semaphore(c.initial, c.maximum);
        EXPECT_EQ(semaphore.Post(c.post), c.accepted ? 0U : VELM_ERROR_CORE_LIMIT_EXCEEDED)
            << c.initial << " of " << c.maximum << " plus " << c.post;
    }
    // A refused post leaves the count: exactly the three that were there can be taken.
    Semaphore semaphore(3, 4);
    EXPECT_EQ(semaphore.Post(2), VELM_ERROR_CORE_LIMIT_EXCEEDED);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(semaphore.Wait(), 0U);
    }
    EXPECT_EQ(semaphore.Post(4), 0U);
}

// A lost wake-up leaves both threads waiting for good. Run for longer with VELM_PING_PONG_ROUNDS=10000000.
TEST(Semaphore, LosesNoWakeUpInPingPong) {
    const char* const given = std::getenv("VELM_PING_PONG_ROUNDS");
    const long rounds = given != nullptr ? std::atol(given) : 100'000;
    Semaphore ping(0, 1);
    Semaphore pong(0, 1);
    std::thread other([&] {
        for (long i = 0; i < rounds; ++i) {
            ping.Wait();
            pong.Post(1);
        }
    });
    for (long i = 0; i < rounds; ++i) {
        ASSERT_EQ(ping.Post(1), 0U);
        ASSERT_EQ(pong.Wait(), 0U);
    }
    other.join();
}

TEST(Semaphore, WakesAsManyAsWerePosted) {
    constexpr unsigned int kThreads = 8;
    Semaphore semaphore(0, kThreads);
    std::atomic<unsigned int> woken{0};
    std::vector<std::thread> threads;
    for (unsigned int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&] {
            semaphore.Wait();
            ++woken;
        });
    }
    std::this_thread::sleep_for(20ms);
    semaphore.Post(3);
    while (woken != 3) {
        std::this_thread::sleep_for(1ms);
    }
    std::this_thread::sleep_for(20ms);
    EXPECT_EQ(woken, 3U);
    semaphore.Post(kThreads - 3);
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(woken, kThreads);
}

TEST(Semaphore, DestructorTurnsEveryBlockedThreadAway) {
    for (int round = 0; round < 50; ++round) {
        constexpr int kThreads = 6;
        auto semaphore = std::make_unique<Semaphore>(0, 1);
        std::atomic<int> begun{0};
        std::atomic<int> turnedAway{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i) {
            threads.emplace_back([&, shared = semaphore.get()] {
                ++begun;
                turnedAway += shared->Wait() == VELM_ERROR_CORE_ILLEGAL_CALL;
            });
        }
        while (begun != kThreads) {
            std::this_thread::yield();
        }
        // Only threads inside Wait are protected; give the last one the time to get there.
        std::this_thread::sleep_for(5ms);
        semaphore.reset();
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(turnedAway, kThreads);
    }
}

TEST(Semaphore, MayBeDestroyedByTheThreadThatAPostWakes) {
    for (int round = 0; round < 2'000; ++round) {
        auto* const semaphore = new Semaphore(0, 1);
        std::thread waiter([semaphore] {
            semaphore->Wait();
            delete semaphore;
        });
        semaphore->Post(1);
        waiter.join();
    }
}

TEST(SyncEvent, AutoResetReleasesOneWaiterForEachSet) {
    SyncEvent event(false, false);
    std::atomic<int> released{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&] {
            event.Wait();
            ++released;
        });
    }
    for (int expected = 1; expected <= 3; ++expected) {
        std::this_thread::sleep_for(10ms);
        EXPECT_EQ(released, expected - 1);
        event.Set();
        while (released != expected) {
            std::this_thread::sleep_for(1ms);
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(SyncEvent, FlagsChooseManualResetAndInitialState) {
    SyncEvent manual(true, true);
    EXPECT_EQ(manual.Wait(), 0U);
    EXPECT_EQ(manual.Wait(), 0U);

    SyncEvent automatic(false, true);
    EXPECT_EQ(automatic.Wait(), 0U);
    std::atomic<bool> released{false};
    std::thread waiter([&] {
        automatic.Wait();
        released = true;
    });
    std::this_thread::sleep_for(10ms);
    EXPECT_FALSE(released);
    automatic.Set();
    waiter.join();
}

}  // namespace
}  // namespace velm
