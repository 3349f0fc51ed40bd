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
    const unsigned int cases[][3] = {{0, 4, 4}, {3, 4, 1}, {9, 4, 0}, {0, 0, 0}, {1, 0xFFFFFFFF, 0x7FFFFFFE}};
    for (const auto& [initial, maximum, most] : cases) {
        SCOPED_TRACE(testing::Message() << initial << " of " << maximum);
        Semaphore semaphore(initial, maximum);
        EXPECT_EQ(semaphore.Post(most + 1), VELM_ERROR_CORE_LIMIT_EXCEEDED);
        EXPECT_EQ(semaphore.Post(0xFFFFFFFF), VELM_ERROR_CORE_LIMIT_EXCEEDED);
        EXPECT_EQ(semaphore.Post(most), 0U) << "a refused post leaves the count";
        EXPECT_EQ(semaphore.Post(1), VELM_ERROR_CORE_LIMIT_EXCEEDED);
    }
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

/// Threads that each wait once.
template <typename Object>
struct Waiters {
    Waiters(Object& object, int count) {
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([this, &object] {
                ++begun;
                (object.Wait() == 0 ? released : turnedAway) += 1;
            });
        }
        while (begun != count) {
            std::this_thread::yield();
        }
        // Give the last one the time to get from there into Wait, on a busy machine, too.
        std::this_thread::sleep_for(30ms);
    }

    /// Waits until so many were released, and for a while whether it stays with them.
    void ExpectReleased(int count) {
        while (released < count) {
            std::this_thread::sleep_for(1ms);
        }
        std::this_thread::sleep_for(10ms);
        EXPECT_EQ(released, count);
    }

    std::atomic<int> begun{0};
    std::atomic<int> released{0};
    std::atomic<int> turnedAway{0};
    std::vector<std::jthread> threads;
};

TEST(Semaphore, WakesAsManyAsWerePosted) {
    Semaphore semaphore(0, 8);
    Waiters waiters(semaphore, 8);
    semaphore.Post(3);
    waiters.ExpectReleased(3);
    semaphore.Post(5);
    waiters.ExpectReleased(8);
}

TEST(SyncEvent, AutoResetReleasesOneWaiterForEachSet) {
    SyncEvent event(false, false);
    Waiters waiters(event, 3);
    for (int released = 0; released < 3; ++released) {
        waiters.ExpectReleased(released);
        event.Set();
    }
}

TEST(SyncEvent, ManualResetReleasesEveryWait) {
    SyncEvent event(true, false);
    Waiters waiters(event, 3);
    waiters.ExpectReleased(0);
    event.Set();
    waiters.ExpectReleased(3);
    EXPECT_EQ(event.Wait(), 0U);
    EXPECT_EQ(SyncEvent(false, true).Wait(), 0U) << "set from the start";
}

// For the thread sanitizer: the setters are counted without any order, so that the event alone gives one.
TEST(SyncEvent, WaitSeesWhatEverySetterWrote) {
    SyncEvent event(false, false);
    std::atomic<int> set{0};
    int written[2] = {};
    std::vector<std::jthread> setters;
    for (int& mine : written) {
        setters.emplace_back([&event, &set, &mine] {
            mine = 1;
            event.Set();
            set.fetch_add(1, std::memory_order_relaxed);
        });
    }
    while (set.load(std::memory_order_relaxed) != 2) {
        std::this_thread::yield();
    }
    event.Wait();
    EXPECT_EQ(written[0] + written[1], 2);
}

TEST(Semaphore, DestructorTurnsEveryBlockedThreadAway) {
    for (int round = 0; round < 25; ++round) {
        auto semaphore = std::make_unique<Semaphore>(0, 1);
        Waiters waiters(*semaphore, 6);
        semaphore.reset();
        waiters.threads.clear();
        EXPECT_EQ(waiters.turnedAway, 6);
    }
}

TEST(Semaphore, MayBeDestroyedByTheThreadThatAPostWakes) {
    for (int round = 0; round < 2'000; ++round) {
        auto* const semaphore = new Semaphore(0, 1);
        std::jthread waiter([semaphore] {
            semaphore->Wait();
            delete semaphore;
        });
        semaphore->Post(1);
    }
}

}  // namespace
}  // namespace velm
