#include "velm/MemoryInfo.h"

#include <windows.h>
#include <psapi.h>

#include <new>

#include "thread/FirstUse.h"

namespace velm {
namespace {

constexpr unsigned int kProcessRefused = 0xFFFFFFFF;

constinit FirstUse<MemoryInfo> g_memoryInfo;

}  // namespace

MemoryInfo* MemoryInfo::GetInstance() {
    return g_memoryInfo.Get([](void* place) { return new (place) MemoryInfo; });
}

MemoryInfo::MemoryInfo() : mInitialized(0), mProcess(nullptr) {}

MemoryInfo::MemoryInfo(const MemoryInfo& other) : MemoryInfo() {
    *this = other;
}

MemoryInfo& MemoryInfo::operator=(const MemoryInfo& other) {
    if (this != &other) {
        Finalize();
        if (other.mInitialized != 0) {
            Initialize(nullptr);
        }
    }
    return *this;
}

MemoryInfo::~MemoryInfo() {
    Finalize();
}

ErrorCode MemoryInfo::Initialize(const char*) {
    mProcess = OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, GetCurrentProcessId());
    if (mProcess == nullptr) {
        return kProcessRefused;
    }
    mInitialized = 1;
    return 0;
}

void MemoryInfo::Check(const char*) {
    if (mInitialized == 1) {
        PROCESS_MEMORY_COUNTERS counters{};
        GetProcessMemoryInfo(mProcess, &counters, sizeof counters);
    }
}

void MemoryInfo::Finalize() {
    mInitialized = 0;
    if (mProcess != nullptr) {
        CloseHandle(mProcess);
        mProcess = nullptr;
    }
}

}  // namespace velm
