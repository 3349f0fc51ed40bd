/// @file
/// Fails each allocation, and each call of Windows, that the libraries make, one at a time in every
/// operation.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>

#include "Operation.h"

namespace {

std::atomic<bool> g_short{false};
std::atomic<bool> g_failed{false};
std::atomic<long long> g_count{0};
std::atomic<long long> g_blocks{0};
velm::test::Shortage g_shortage{};

bool MayAllocate() {
    if (!g_short) {
        return true;
    }
    const long long number = g_count++;
    if (g_shortage.once ? number != g_shortage.from : number < g_shortage.from) {
        return true;
    }
    g_failed = true;
    return false;
}

}  // namespace

#ifdef VELM_SANITIZED
#define VELM_TEST_MALLOC std::malloc  // the sanitizer has replaced it already
#else
#define VELM_TEST_MALLOC __libc_malloc
// The C library's own, for what it and the layer below the libraries allocate.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* malloc(std::size_t size) {
    return MayAllocate() ? __libc_malloc(size) : nullptr;
}
void* calloc(std::size_t count, std::size_t size) {
    return MayAllocate() ? __libc_calloc(count, size) : nullptr;
}
void* realloc(void* block, std::size_t size) {
    return MayAllocate() ? __libc_realloc(block, size) : nullptr;
}
}
#endif

// Linux lets a program replace these for the libraries that it uses, too. Inlined, the pairs of malloc and
// free would look mismatched to the compiler.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    void* const block = MayAllocate() ? VELM_TEST_MALLOC(size) : nullptr;
    g_blocks += block != nullptr;
    return block;
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const block = operator new(size, std::nothrow)) {
        return block;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept {
    g_blocks -= block != nullptr;
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    operator delete(block);
}
// A sanitizer's own would not come to those above.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return operator new(size, std::nothrow);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete[](void* block) noexcept {
    operator delete(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    operator delete(block);
}

namespace velm::test {

void BeginShortage(Shortage shortage) {
    g_shortage = shortage;
    g_count = 0;
    g_failed = false;
    g_short = true;
}

bool EndShortage() {
    g_short = false;
    return g_failed;
}

namespace {

const Operations& AllOperations() {
    static const Operations all = [] {
        Operations operations;
        for (const auto& family : {AudioOperations(), ConfigOperations(), CoreOperations(),
                                   FoundationOperations(), GraphicsOperations(), ThreadOperations()}) {
            operations.insert(operations.end(), family.begin(), family.end());
        }
        return operations;
    }();
    return all;
}

/// Runs an operation and looks at what it leaves behind.
long long RunOne(const Operation& operation, Attempt& attempt) {
    const unsigned int handles = posix::OpenHandles();
    const unsigned int contexts = posix::OpenDeviceContexts();
    const long long outcome = operation.run(attempt);
    posix::Reset();
    EXPECT_EQ(posix::OpenHandles(), handles);
    EXPECT_EQ(posix::OpenDeviceContexts(), contexts);
    return outcome;
}

/// The blocks in use when they are the expected, or else after a while: a thread that has been joined may
/// still be winding up.
long long SettledBlocks(long long expected) {
    for (int i = 0; i < (expected < 0 ? 10 : 1000) && g_blocks != expected; ++i) {
        Sleep(1);
    }
    return g_blocks;
}

bool Contains(const std::vector<long long>& outcomes, long long outcome) {
    return std::find(outcomes.begin(), outcomes.end(), outcome) != outcomes.end();
}

// The first two runs fill what the system below keeps: code pages, stacks of threads, the registry.
TEST(Failures, MemoryThatRunsOutGivesTheDocumentedOutcome) {
    int cases = 0;
    for (const Operation& operation : AllOperations()) {
        long long blocks = 0;
        for (const bool once : {true, false}) {
            for (long long from = -2, failed = 1; failed != 0; ++from) {
                Attempt attempt(Shortage{from < 0 ? 1LL << 40 : from, once});
                SCOPED_TRACE(testing::Message() << operation.what << ", " << from << (once ? " once" : ""));
                const long long outcome = RunOne(operation, attempt);
                blocks = from < 0 || operation.keeps ? SettledBlocks(-1) : blocks;
                EXPECT_EQ(SettledBlocks(blocks), blocks);
                failed = attempt.didFail || from < 0;
                ASSERT_TRUE(outcome == operation.outcome ||
                            (attempt.didFail && Contains(operation.noMemory, outcome)))
                    << outcome;
                cases += attempt.didFail;
            }
        }
    }
    std::printf("%d failed allocations in %zu operations\n", cases, AllOperations().size());
}

TEST(Failures, ACallThatFailsGivesTheDocumentedOutcome) {
    int cases = 0;
    for (const Operation& operation : AllOperations()) {
        SCOPED_TRACE(operation.what);
        Attempt plain("", 0, 0);
        EXPECT_EQ(RunOne(operation, plain), operation.outcome);
        std::map<std::string, unsigned int> times;
        for (const std::string& call : plain.calls) {
            const unsigned int number = times[call]++;
            bool known = false;
            for (const Failure& failure : operation.failures) {
                if (failure.call == call && (failure.number == number || failure.number == Failure::kEvery)) {
                    known = true;
                    Attempt attempt(failure.call, failure.lastError, number);
                    EXPECT_EQ(RunOne(operation, attempt), failure.outcome) << call << " number " << number;
                    ++cases;
                }
            }
            EXPECT_TRUE(known) << call << " number " << number << " is not in the table";
        }
        for (const Failure& failure : operation.failures) {
            // Whether a thread waits depends on who comes first.
            EXPECT_TRUE(times.count(failure.call) == 1 || failure.call == std::string("WaitOnAddress"))
                << failure.call << " is not called";
        }
    }
    std::printf("%d failed calls in %zu operations\n", cases, AllOperations().size());
}

}  // namespace
}  // namespace velm::test
