/// @file
/// Repeats every operation of tests/failures/Operations.cpp; none may leave anything behind.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "failures/Operation.h"
#include "ProcessResources.h"
#include "velm/core/Thread.h"

namespace velm::test {
namespace {

/// What the process holds after a number of cycles. Waits until the system has cleaned up the last thread.
ProcessResources ResourcesAfter(const Operation& operation, int cycles, long long threads) {
    for (int i = 0; i < cycles; ++i) {
        EXPECT_EQ(operation.run({[] {}, [] {}}), operation.outcome);
    }
    for (int i = 0; i < 100 && GetProcessResources().threads > threads; ++i) {
        Thread::Sleep(10);
    }
    return GetProcessResources();
}

// VELM_CYCLES sets the number of cycles.
TEST(Cycles, RepeatedOperationsLeakNothing) {
    const char* const given = std::getenv("VELM_CYCLES");
    for (const Operation& operation : AllOperations()) {
        if (operation.keeps) {
            continue;
        }
        SCOPED_TRACE(operation.what);
        const int cycles = (given != nullptr ? std::atoi(given) : 100) / operation.slowness;
        const long long threads = GetProcessResources().threads;
        const ProcessResources before = ResourcesAfter(operation, cycles / 10 + 1, threads);
        const ProcessResources after = ResourcesAfter(operation, cycles, before.threads);
        EXPECT_EQ(after.handles, before.handles);
        EXPECT_EQ(after.threads, before.threads);
        EXPECT_EQ(after.objects, before.objects);
        // The system's heaps vary a little and grow by pages; this finds a leak of 40 bytes per cycle.
        EXPECT_LT(after.memory, before.memory + 40LL * cycles + 1000);
        EXPECT_LT(after.reserved, before.reserved + 40LL * cycles + (1 << 20));
        std::printf("%-30s %6d cycles: heap %+lld, private %+lld\n", operation.what.c_str(), cycles,
                    after.memory - before.memory, after.reserved - before.reserved);
    }
}

}  // namespace
}  // namespace velm::test
