#include "velm/core/Thread.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/SyncEvent.h"

#ifndef _WIN32
#include <pthread.h>
#endif

namespace velm::thread_test {

void Start(Thread& thread, int (*function)(void*), void* argument, const ThreadConfig& config = {}) {
    ASSERT_EQ(thread.Initialize(config, function, argument), 0U);
    ASSERT_EQ(thread.Start(nullptr), 0U);
}

/// Counts its runs; the third one throws.
int CountToThree(void* counter) {
    if (++*static_cast<int*>(counter) == 3) {
        throw std::runtime_error("on purpose");
    }
    return -7;
}

TEST(Thread, RunsAgainAndRejectsCallsOutOfOrder) {
    int runs = 0;
    Thread thread;
    EXPECT_EQ(thread.Initialize(ThreadConfig(), nullptr, nullptr), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(thread.Start(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    ASSERT_EQ(thread.Initialize(ThreadConfig(), &CountToThree, &runs), 0U);
    for (int run = 1; run <= 3; ++run) {
        EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
        ASSERT_EQ(thread.Start(nullptr), 0U);
        EXPECT_EQ(thread.Start(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
        EXPECT_EQ(thread.Initialize(ThreadConfig(), &CountToThree, &runs), VELM_ERROR_CORE_ILLEGAL_CALL);
        unsigned long long exitCode = 5;
        EXPECT_EQ(thread.Join(&exitCode), run == 3 ? VELM_ERROR_CORE_THREAD_EXCEPTION : 0U);
        EXPECT_EQ(exitCode, run == 3 ? 5U : 0xFFFFFFF9U);
        EXPECT_EQ(runs, run);
    }
}

TEST(Thread, DestructorWaitsExceptOnItsOwnThread) {
    static std::unique_ptr<Thread> self;
    static SyncEvent destroyed(false, false);
    const auto destroySelf = [](void*) {
        EXPECT_EQ(self->Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
        self.reset();
        destroyed.Set();
        return 0;
    };
    for (int round = 0; round < 100; ++round) {
        self = std::make_unique<Thread>();
        Start(*self, destroySelf, nullptr);
        destroyed.Wait();
    }
    int runs = 0;
    const auto countLate = [](void* counter) { return Thread::Sleep(20), CountToThree(counter); };
    {
        Thread waitedFor;
        Start(waitedFor, countLate, &runs);
    }
    EXPECT_EQ(runs, 1);
}

#ifndef _WIN32
TEST(Thread, SurvivesPthreadExit) {
    Thread thread;
    Start(
        thread, [](void*) -> int { pthread_exit(nullptr); }, nullptr);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_THREAD_EXCEPTION);
}

TEST(Thread, AppliesNameAndStackSize) {
    ThreadConfig config;
    config.SetName(nullptr);
    config.SetName("audio consumer thread");
    config.SetStackSize(20 << 20);
    const auto look = [](void* given) {
        char name[16] = {};  // Linux keeps 15 bytes
        pthread_getname_np(pthread_self(), name, sizeof name);
        EXPECT_STREQ(name, "audio consumer ");
        pthread_attr_t attributes;
        pthread_getattr_np(pthread_self(), &attributes);
        std::size_t size = 0;
        pthread_attr_getstacksize(&attributes, &size);
        pthread_attr_destroy(&attributes);
        const std::size_t wanted = static_cast<ThreadConfig*>(given)->GetStackSize();
        EXPECT_TRUE(size >= wanted && size < 2 * wanted) << size;
        return 0;
    };
    Thread thread;
    Start(thread, look, &config, config);
    EXPECT_EQ(thread.Join(nullptr), 0U);
}
#endif

}  // namespace velm::thread_test
