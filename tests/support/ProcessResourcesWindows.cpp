#include <windows.h>
#include <tlhelp32.h>

#include <memory>

#include "ProcessResources.h"

namespace velm {
namespace {

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

long long CountThreads() {
    const std::unique_ptr<void, HandleCloser> snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    long long threads = 0;
    for (BOOL more = Thread32First(snapshot.get(), &entry); more;
         more = Thread32Next(snapshot.get(), &entry)) {
        threads += entry.th32OwnerProcessID == GetCurrentProcessId();
    }
    return threads;
}

/// The bytes in use on all heaps of the process.
long long CountHeapBytes() {
    HANDLE heaps[64];
    const DWORD count = GetProcessHeaps(64, heaps);
    long long bytes = 0;
    for (DWORD i = 0; i < count && i < 64; ++i) {
        HeapLock(heaps[i]);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry)) {
            bytes += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
        }
        HeapUnlock(heaps[i]);
    }
    return bytes;
}

}  // namespace

ProcessResources GetProcessResources() {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    return {handles, CountThreads(), CountHeapBytes()};
}

}  // namespace velm
