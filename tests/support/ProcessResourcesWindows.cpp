#include <windows.h>
#include <psapi.h>
#include <tlhelp32.h>

#include "ProcessResources.h"

namespace velm::test {
namespace {

long long CountThreads() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    long long threads = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        threads += entry.th32OwnerProcessID == GetCurrentProcessId();
    }
    CloseHandle(snapshot);
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

/// Wine does not count them, but finds each by its index in the table alone.
long long CountGraphicsObjects() {
    const long long told = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    long long found = 0;
    for (ULONG_PTR place = 1; told == 0 && place < 0x10000; ++place) {
        found += GetObjectType(reinterpret_cast<HGDIOBJ>(place)) != 0;
    }
    return told + found;
}

}  // namespace

ProcessResources GetProcessResources() {
    DWORD handles = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    return {handles, CountThreads(), CountHeapBytes(), CountGraphicsObjects(),
            static_cast<long long>(counters.PagefileUsage)};
}

}  // namespace velm::test
