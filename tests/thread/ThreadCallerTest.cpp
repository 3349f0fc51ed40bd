#include "velm/ThreadCaller.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <vector>

#include "velm/AutoResetSyncEventWrapper.h"
#include "velm/core/Thread.h"

namespace velm {
namespace {

int Count(void* counter) {
    ++*static_cast<std::atomic<int>*>(counter);
    return 7;
}

int WaitFor(void* event) {
    static_cast<AutoResetSyncEventWrapper*>(event)->Wait();
    return 0;
}

int Throw(void*) {
    throw 1;
}

/// The identifier is the first member; no operation gives it.
int IdOf(const ThreadCaller& caller) {
    int id = 0;
    std::memcpy(&id, &caller, sizeof id);
    return id;
}

TEST(ThreadCaller, RunsTheFunctionOnceAndCountsEveryStart) {
    std::atomic<int> runs{0};
    ThreadCaller caller;
    const int before = ThreadCaller::mCount;
    EXPECT_EQ(IdOf(caller), 0);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 65535);
    caller.Start(&Count, &runs, 7);
    EXPECT_EQ(IdOf(caller), 7000 + before + 1);
    EXPECT_EQ(caller.GetState(), 0);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 65535);
    EXPECT_EQ(runs, 1);
    caller.Start(nullptr, nullptr, 8);  // fails, and counts
    EXPECT_EQ(IdOf(caller), 8000 + before + 2);
    caller.Start(&Count, &runs, "named");
    EXPECT_EQ(IdOf(caller), before + 3);
    caller.Start(&Count, &runs, nullptr, 2147483647);
    EXPECT_EQ(ThreadCaller::mCount, before + 4);
    caller.Stop();
    EXPECT_EQ(runs, 3);
}

TEST(ThreadCaller, AFailedStartKeepsItsStateThroughStop) {
    ThreadCaller caller;
    caller.Start(nullptr, nullptr, "no function");
    EXPECT_EQ(caller.GetState(), 2);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), 2);
    caller.Start(&Throw, nullptr, "throws");
    EXPECT_EQ(caller.GetState(), 0);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), -1);
    caller.Stop();
    EXPECT_EQ(caller.GetState(), -1);
}

// An earlier thread must neither hold up Start nor be lost: it works on an event of this function's.
TEST(ThreadCaller, StartTwiceWaitsForBothThreadsInStop) {
    AutoResetSyncEventWrapper event;
    static std::atomic<bool> triggered{false};
    std::atomic<int> runs{0};
    ThreadCaller caller;
    caller.Start(&WaitFor, &event, "first");
    caller.Start(&Count, &runs, "second");
    EXPECT_EQ(caller.GetState(), 0);
    ThreadCaller trigger;
    trigger.Start(
        [](void* argument) {
            Thread::Sleep(20);
            triggered = true;
            static_cast<AutoResetSyncEventWrapper*>(argument)->Trigger();
            return 0;
        },
        &event, "trigger");
    caller.Stop();
    EXPECT_TRUE(triggered) << "the event was set from the start";
    EXPECT_EQ(caller.GetState(), 65535);
    EXPECT_EQ(runs, 1);
}

TEST(ThreadCaller, ACopyNeverJoinsOrDeletesASecondTime) {
    struct Case {
        const char* name;
        bool sourceGoesFirst;
        bool byAssignment;
    };
    for (const Case& test :
         {Case{"source first", true, false}, Case{"copy first", false, false},
          Case{"source first, assigned", true, true}, Case{"copy first, assigned", false, true}}) {
        SCOPED_TRACE(test.name);
        AutoResetSyncEventWrapper event;
        auto source = std::make_unique<ThreadCaller>();
        source->Start(&WaitFor, &event, "source", 5);
        auto copy =
            test.byAssignment ? std::make_unique<ThreadCaller>() : std::make_unique<ThreadCaller>(*source);
        if (test.byAssignment) {
            *copy = *source;
        }
        const ThreadCaller copyOfCopy(*copy);
        EXPECT_EQ(copy->GetState(), 0);
        EXPECT_EQ(IdOf(copyOfCopy), IdOf(*source));
        if (test.sourceGoesFirst) {
            event.Trigger();
            source.reset();
            copy->Stop();
            EXPECT_EQ(copy->GetState(), 65535);
        } else {
            copy.reset();  // must not wait: the thread runs on
            EXPECT_EQ(source->GetState(), 0);
            event.Trigger();
            source->Stop();
            EXPECT_EQ(source->GetState(), 65535);
        }
    }
}

TEST(ThreadCaller, AssignmentStopsTheThreadThatWouldBeLost) {
    std::atomic<int> runs{0};
    ThreadCaller target;
    target.Start(&Count, &runs, "target");
    ThreadCaller& same = target;
    target = same;
    EXPECT_EQ(target.GetState(), 0);
    target = ThreadCaller();
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(target.GetState(), 65535);
}

TEST(AutoResetSyncEventWrapper, EachTriggerReleasesOneWait) {
    AutoResetSyncEventWrapper event;
    EXPECT_EQ(event.Initialize(), 0U);
    EXPECT_EQ(event.Trigger(), 0U);
    EXPECT_EQ(event.Trigger(), 0U);
    EXPECT_EQ(event.Wait(), 0U);
    ThreadCaller waiter;
    waiter.Start(&WaitFor, &event, "waiter");
    EXPECT_EQ(event.Trigger(), 0U);
    waiter.Stop();
    EXPECT_EQ(event.Terminate(), 0U);
}

}  // namespace
}  // namespace velm
