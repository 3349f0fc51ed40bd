/// @file
/// Makes each allocation of every operation fail, one at a time.
#include <windows.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "Memory.h"
#include "Operation.h"

namespace velm::test {
namespace {

constexpr long long kNever = 1LL << 40;

/// @return whether an allocation failed
bool Fail(const Operation& operation, Shortage shortage) {
    const auto begin = [&] {
        g_memory.shortage = shortage;
        g_memory.count = 0;
        g_memory.didFail = false;
        g_memory.isShort = true;
    };
    const long long blocks = g_memory.blocks;
    const long long outcome = RunOne(operation, {begin, [] { g_memory.isShort = false; }});
    // The first runs, in which nothing fails, fill the system's caches.
    if (shortage.from != kNever && !operation.keeps) {
        for (int i = 0; i < 1000 && g_memory.blocks > blocks; ++i) {
            Sleep(1);  // a joined thread may still be exiting
        }
        EXPECT_LE(g_memory.blocks, blocks);
    }
    EXPECT_TRUE(outcome == operation.outcome ||
                (g_memory.didFail && std::ranges::count(operation.noMemory, outcome) != 0))
        << outcome;
    return g_memory.didFail;
}

TEST(Failures, FailedAllocationsGiveTheDocumentedOutcome) {
    ReplaceAllocator();
    int cases = 0;
    for (const Operation& operation : AllOperations()) {
        for (const bool once : {true, false}) {
            bool more = true;
            for (long long from = -2; more; ++from) {
                SCOPED_TRACE(testing::Message() << operation.what << ", " << from << (once ? " once" : ""));
                const bool failed = Fail(operation, {from < 0 ? kNever : from, once});
                ASSERT_FALSE(testing::Test::HasFailure());
                cases += failed;
                more = failed || from < 0;
            }
        }
    }
    std::printf("%d failed allocations in %zu operations\n", cases, AllOperations().size());
}

}  // namespace

long long RunOne(const Operation& operation, const Attempt& attempt) {
    const long long open = CountOpen();
    const long long outcome = operation.run(attempt);
    EXPECT_EQ(CountOpen(), open);
    return outcome;
}

}  // namespace velm::test
