#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
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

#ifndef _WIN32
#include <dlfcn.h>
#include <csignal>
#endif

using namespace std::chrono_literals;

// Count the calls that put a thread to sleep and those that wake threads; on Linux only.
static std::atomic<int> g_waits{0};
static std::atomic<int> g_wakes{0};
static std::atomic<bool> g_processEnds{false};

// The delay added to each wake-up, and when a thread last fell asleep and last woke up; on Linux only.
using Clock = std::chrono::steady_clock;
static std::atomic<Clock::duration> g_wakeDelay{Clock::duration::zero()};
static std::atomic<Clock::time_point> g_asleep{};
static std::atomic<Clock::time_point> g_awake{};

#ifndef _WIN32
// On Linux a program can replace the functions that its libraries call.
template <typename Call>
Call* Replaced(Call*, const char* name) {
    return reinterpret_cast<Call*>(dlsym(RTLD_NEXT, name));
}

BOOL WaitOnAddress(volatile void* address, void* compare, SIZE_T size, DWORD milliseconds) {
    g_asleep = Clock::now();
    ++g_waits;
    const BOOL result = Replaced(&WaitOnAddress, __func__)(address, compare, size, milliseconds);
    g_awake = Clock::now();
    return result;
}

static void DelayWake() {
    const Clock::time_point end = Clock::now() + g_wakeDelay.load();
    while (Clock::now() < end) {
    }
}

void WakeByAddressSingle(void* address) {
    ++g_wakes;
    DelayWake();
    Replaced(&WakeByAddressSingle, __func__)(address);
}

void WakeByAddressAll(void* address) {
    ++g_wakes;
    DelayWake();
    Replaced(&WakeByAddressAll, __func__)(address);
}

unsigned char RtlDllShutdownInProgress() {
    return g_processEnds;
}
#endif

namespace velm::synchronization_test {

/// Expects an operation not to sleep and to make this many calls that wake threads.
template <typename Run>
void ExpectWakes([[maybe_unused]] int wakes, Run run) {
    g_waits = g_wakes = 0;
    run();
#ifndef _WIN32
    EXPECT_EQ(g_waits, 0);
    EXPECT_EQ(g_wakes, wakes);
#endif
}

/// Threads that each wait once.
struct Waiters {
    template <typename Wait>
    Waiters(int count, Wait wait) {
        g_waits = 0;
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([this, wait] {
#ifdef _WIN32
                ++g_waits;
#endif
                (wait() == 0 ? released : failed) += 1;
            });
        }
        while (g_waits < count) {
            std::this_thread::yield();
        }
        // The last one needs time to fall asleep, even on a busy machine.
        std::this_thread::sleep_for(30ms);
        EXPECT_EQ(g_waits, count) << "a thread is not asleep";
    }

    /// Waits until this many are released, and a little longer in case more follow.
    void ExpectReleased(int count) {
        while (released < count) {
            std::this_thread::sleep_for(1ms);
        }
        std::this_thread::sleep_for(10ms);
        EXPECT_EQ(released, count);
    }

    std::atomic<int> released{0};
    std::atomic<int> failed{0};
    std::vector<std::jthread> threads;
};

TEST(Mutex, RejectsUnlockByNonOwners) {
    Mutex mutex;
    EXPECT_EQ(mutex.Lock(), VELM_ERROR_CORE_NOT_INITIALIZED);
    EXPECT_EQ(mutex.Initialize(), 0U);
    EXPECT_EQ(mutex.Lock(), 0U);
    EXPECT_EQ(mutex.Lock(), 0U);
    EXPECT_EQ(mutex.Unlock(), 0U);
    std::thread([&] { EXPECT_EQ(mutex.Unlock(), VELM_ERROR_CORE_ILLEGAL_CALL); }).join();
    EXPECT_EQ(mutex.Unlock(), 0U);
    EXPECT_EQ(mutex.Unlock(), VELM_ERROR_CORE_ILLEGAL_CALL);
}

TEST(Mutex, AdmitsOneThreadAtATime) {
#ifndef _WIN32
    std::signal(SIGUSR1, [](int) { usleep(20); });
#endif
    Mutex mutex;
    mutex.Initialize();
    long count = 0;
    std::atomic<long> rounds{0};
    std::atomic<bool> stop{false};
    const auto work = [&] {
        for (; !stop; ++rounds) {
            ASSERT_EQ(mutex.Lock(), 0U);
            ++count;
            ASSERT_EQ(mutex.Unlock(), 0U) << "another thread owns it";
        }
    };
    std::vector<std::jthread> threads;
    threads.emplace_back(work);
    threads.emplace_back(work);
    for (int i = 0; i < 2000 || rounds < 50'000; ++i) {
#ifndef _WIN32
        pthread_kill(threads[0].native_handle(), SIGUSR1);  // delays it anywhere
#endif
        std::this_thread::sleep_for(20us);
    }
    stop = true;
    threads.clear();  // joins
    EXPECT_EQ(count, rounds);
}

TEST(Mutex, WakesAllSleepersWithoutSpareCalls) {
    Mutex mutex;
    mutex.Initialize();
    mutex.Lock();
    {
        Waiters waiters(4, [&] { return mutex.Lock().IsFailed() ? 1U : mutex.Unlock(); });
        mutex.Unlock();
        waiters.ExpectReleased(4);
    }
    ExpectWakes(0, [&] { mutex.Lock(), mutex.Unlock(); });
}

TEST(Semaphore, NeverExceedsItsMaximum) {
    const unsigned int cases[][3] = {{0, 4, 4}, {3, 4, 1}, {9, 4, 0}, {0, 0, 0}, {1, 0xFFFFFFFF, 0x7FFFFFFE}};
    for (const auto& [initial, maximum, most] : cases) {
        SCOPED_TRACE(testing::Message() << initial << " of " << maximum);
        Semaphore semaphore(initial, maximum);
        EXPECT_EQ(semaphore.Post(most + 1), VELM_ERROR_CORE_LIMIT_EXCEEDED);
        EXPECT_EQ(semaphore.Post(0xFFFFFFFF), VELM_ERROR_CORE_LIMIT_EXCEEDED);
        EXPECT_EQ(semaphore.Post(most), 0U) << "a failed post changed the count";
        EXPECT_EQ(semaphore.Post(1), VELM_ERROR_CORE_LIMIT_EXCEEDED);
        EXPECT_EQ(semaphore.TryTake(), maximum != 0);
        EXPECT_EQ(semaphore.Post(1), maximum != 0 ? 0U : VELM_ERROR_CORE_LIMIT_EXCEEDED);
    }
}

// A lost wake-up hangs both threads. VELM_PING_PONG_ROUNDS=10000000 makes it longer.
TEST(Semaphore, LosesNoWakeUpInPingPong) {
    const char* const given = std::getenv("VELM_PING_PONG_ROUNDS");
    const auto play = [rounds = given != nullptr ? std::atol(given) : 50'000](Semaphore& mine,
                                                                              Semaphore& theirs) {
        for (long i = 0; i < rounds; ++i) {
            ASSERT_EQ(theirs.Post(1), 0U);
            ASSERT_EQ(mine.Wait(), 0U);
        }
    };
    Semaphore ping(0, 2);
    Semaphore pong(0, 2);
    std::jthread other([&] { play(ping, pong); });
    play(pong, ping);
}

TEST(Semaphore, WakesAsManyAsPosted) {
    Semaphore semaphore(0, 8);
    {
        Waiters waiters(8, [&] { return semaphore.Wait(); });
        ExpectWakes(3, [&] { semaphore.Post(3); });
        waiters.ExpectReleased(3);
        ExpectWakes(1, [&] { semaphore.Post(5); });
        waiters.ExpectReleased(8);
    }
    ExpectWakes(0, [&] { semaphore.Post(1), semaphore.Wait(); });
}

#ifndef _WIN32
TEST(Semaphore, SpinsAsLongAsAWakeUpTakes) {
    for (const Clock::duration delay : {2us, 10us, 40us}) {
        std::vector<Clock::duration> spins;
        std::vector<Clock::duration> wakeUps;
        g_wakeDelay = delay;
        for (int round = 0; round < 64; ++round) {
            Semaphore semaphore(0, 1);
            Clock::time_point began;
            g_waits = 0;
            std::jthread waiter([&] {
                began = Clock::now();
                semaphore.Wait();
            });
            while (g_waits == 0) {
                std::this_thread::yield();
            }
            std::this_thread::sleep_for(100us);
            const Clock::time_point posted = Clock::now();
            semaphore.Post(1);
            waiter.join();
            if (round >= 32) {  // earlier rounds teach it the delay
                spins.push_back(g_asleep.load() - began);
                wakeUps.push_back(g_awake.load() - posted);
            }
        }
        g_wakeDelay = Clock::duration::zero();
        // Other load can only lengthen a spin, and an average lies between the smallest and the largest
        // value.
        const Clock::duration spin = std::ranges::min(spins);
        const auto [shortest, longest] = std::ranges::minmax(wakeUps);
        EXPECT_GE(spin, std::min<Clock::duration>(shortest, 50us) * 9 / 10) << delay / 1us;
        EXPECT_LE(spin, longest * 11 / 10 + 20us) << delay / 1us;
    }
}
#endif

TEST(Semaphore, DestructorReleasesBlockedThreads) {
    for (int round = 0; round < 10; ++round) {
        auto semaphore = std::make_unique<Semaphore>(0, 1);
        Waiters waiters(6, [&] { return semaphore->Wait(); });
        semaphore.reset();
        waiters.threads.clear();
        EXPECT_EQ(waiters.failed, 6);
    }
}

TEST(Semaphore, WokenThreadMayDestroyIt) {
    constexpr int kRounds = 1'000;
    std::atomic<Semaphore*> offered{nullptr};
    std::jthread waiter([&offered] {
        for (int round = 0; round < kRounds; ++round) {
            Semaphore* semaphore = nullptr;
            while ((semaphore = offered.exchange(nullptr)) == nullptr) {
                std::this_thread::yield();
            }
            semaphore->Wait();
            delete semaphore;
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        auto* const semaphore = new Semaphore(0, 1);
        offered = semaphore;
        while (offered != nullptr) {
            std::this_thread::yield();
        }
        if (round % 10 == 0) {
            std::this_thread::sleep_for(1ms);  // the waiter sleeps by now
        }
        semaphore->Post(1);
    }
}

TEST(SyncEvent, SetReleasesOneWaiterOrAll) {
    SyncEvent one(false, false);
    SyncEvent all(true, false);
    Waiters waiters(3, [&] { return one.Wait(); });
    for (int released = 0; released < 3; ++released) {
        waiters.ExpectReleased(released);
        one.Set();
    }
    Waiters others(3, [&] { return all.Wait(); });
    all.Set();
    others.ExpectReleased(3);
    EXPECT_EQ(all.Wait(), 0U);
    EXPECT_EQ(SyncEvent(false, true).Wait(), 0U) << "set from the start";
}

// For the thread sanitizer: the counter is relaxed, so only the event orders the writes.
TEST(SyncEvent, WaitSeesTheWritesOfAllSetters) {
    SyncEvent event(false, false);
    std::atomic<int> set{0};
    int written[2] = {};
    const auto write = [&](int index) {
        written[index] = 1;
        event.Set();
        set.fetch_add(1, std::memory_order_relaxed);
    };
    const std::jthread setters[] = {std::jthread(write, 0), std::jthread(write, 1)};
    while (set.load(std::memory_order_relaxed) != 2) {
        std::this_thread::yield();
    }
    event.Wait();
    EXPECT_EQ(written[0] + written[1], 2);
}

#ifndef _WIN32
TEST(Synchronization, NeverBlocksWhileTheProcessEnds) {
    Mutex mutex;
    mutex.Initialize();
    std::thread([&] { mutex.Lock(); }).join();
    g_processEnds = true;
    ExpectWakes(0, [&] {
        EXPECT_EQ(mutex.Lock(), 0U);
        EXPECT_EQ(Semaphore(0, 1).Wait(), VELM_ERROR_CORE_ILLEGAL_CALL);
        EXPECT_EQ(SyncEvent(false, false).Wait(), VELM_ERROR_CORE_ILLEGAL_CALL);
    });
    g_processEnds = false;
}
#endif

}  // namespace velm::synchronization_test
