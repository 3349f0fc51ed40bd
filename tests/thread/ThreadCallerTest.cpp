#include "velm/ThreadCaller.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <thread>

#include "velm/AutoResetSyncEventWrapper.h"
#include "velm/core/Thread.h"

namespace velm::thread_caller_test {

int Count(void* counter) {
    ++*static_cast<std::atomic<int>*>(counter);
    return 7;
}

int CountLate(void* counter) {
    return Thread::Sleep(20), Count(counter);
}

int WaitFor(void* event) {
    static_cast<AutoResetSyncEventWrapper*>(event)->Wait();
    return 0;
}

/// The identifier is the first member and has no getter.
int IdOf(const ThreadCaller& caller) {
    int id = 0;
    std::memcpy(&id, &caller, sizeof id);
    return id;
}

TEST(ThreadCaller, RunsOnceAndCountsEveryStart) {
    std::atomic<int> runs{0};
    ThreadCaller caller;
    const int before = ThreadCaller::mCount;
    EXPECT_EQ(IdOf(caller), 0);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 65535);
    caller.Start(&Count, &runs, "named");
    EXPECT_EQ(IdOf(caller), before + 1);
    EXPECT_EQ(caller.GetState(), 0);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 65535);
    caller.Start(nullptr, nullptr, 8);
    EXPECT_EQ(IdOf(caller), 8000 + before + 2) << "a failed start was not counted";
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 2);
    caller.Start(&Count, &runs, nullptr, 2147483647);
    caller.Start([](void*) -> int { throw 1; }, nullptr, "throws");
    caller.Stop();
    EXPECT_EQ(caller.GetState(), -1);
    {
        ThreadCaller destroyed;
        destroyed.Start(&CountLate, &runs, "joined");
    }
    EXPECT_EQ(runs, 3);
}

// Start must neither wait for an earlier thread nor forget it: that thread uses a local event.
TEST(ThreadCaller, StopJoinsBothThreadsAfterTwoStarts) {
    AutoResetSyncEventWrapper event;
    EXPECT_EQ(event.Initialize(), 0U);
    EXPECT_EQ(event.Terminate(), 0U);
    for (const char* const fault : {"the event was set from the start", "the event stayed set"}) {
        std::atomic<bool> triggered{false};
        std::atomic<int> runs{0};
        ThreadCaller caller;
        caller.Start(&WaitFor, &event, "first");
        caller.Start(&Count, &runs, "second");
        EXPECT_EQ(caller.GetState(), 0);
        std::jthread trigger([&] {
            Thread::Sleep(20);
            triggered = true;
            event.Trigger();
        });
        caller.Stop();
        EXPECT_TRUE(triggered) << fault;
        EXPECT_EQ(runs, 1);
    }
}

TEST(ThreadCaller, CopiesNeverJoinOrDeleteTwice) {
    AutoResetSyncEventWrapper event;
    std::atomic<int> runs{0};
    auto source = std::make_unique<ThreadCaller>();
    source->Start(&WaitFor, &event, "source", 5);
    ThreadCaller copied(*source);
    ThreadCaller assigned;
    assigned.Start(&CountLate, &runs, "replaced");
    assigned = *source;
    EXPECT_EQ(runs, 1) << "not joined";
    ThreadCaller& same = *source;
    *source = same;
    for (ThreadCaller* const copy : {&copied, &assigned}) {
        EXPECT_EQ(copy->GetState(), 0);
        EXPECT_EQ(IdOf(*copy), IdOf(*source));
        copy->Stop();  // must not wait for the running thread
        EXPECT_EQ(copy->GetState(), 65535);
    }
    event.Trigger();
}

}  // namespace velm::thread_caller_test
