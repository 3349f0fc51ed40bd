/// @file
/// Makes the libraries run out of memory. MemoryPosix.cpp and MemoryWindows.cpp replace the allocator.
#pragma once

#include <atomic>
#include <cerrno>

namespace velm::test {

/// Which allocations fail: all from this number on, or only this one.
struct Shortage {
    long long from = 0;
    bool once = false;
};

struct Memory {
    Shortage shortage;
    std::atomic<bool> isShort{false};
    std::atomic<bool> didFail{false};
    std::atomic<long long> count{0};
    std::atomic<long long> blocks{0};  ///< in use; only differences matter
};
inline constinit Memory g_memory;

inline bool MayAllocate() {
    if (!g_memory.isShort) {
        return true;
    }
    const long long number = g_memory.count++;
    const Shortage& shortage = g_memory.shortage;
    if (shortage.once ? number != shortage.from : number < shortage.from) {
        return true;
    }
    g_memory.didFail = true;
    errno = ENOMEM;  // the C library needs it when it starts a thread
    return false;
}

/// Counts a block that was allocated, unless it is null.
inline void* CountBlock(void* block) {
    g_memory.blocks += block != nullptr;
    return block;
}

/// Starts to count blocks and to fail allocations in the libraries.
void ReplaceAllocator();

/// The number of open handles, and of device contexts on Linux.
long long CountOpen();

}  // namespace velm::test
