#include <windows.h>
#include <psapi.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <new>

#include "Handle.h"
#include "Intercept.h"

namespace velm::posix {
namespace {

class Process : public Object {};

const HANDLE kCurrentProcess = reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1));

bool IsProcess(HANDLE handle) {
    if (handle == kCurrentProcess || FromHandle<Process>(handle) != nullptr) {
        return true;
    }
    SetLastError(ERROR_INVALID_HANDLE);
    return false;
}

}  // namespace
}  // namespace velm::posix

using namespace velm::posix;

HANDLE GetCurrentProcess() {
    return kCurrentProcess;
}

unsigned char RtlDllShutdownInProgress() {
    return FALSE;
}

DWORD GetCurrentProcessId() {
    return static_cast<DWORD>(getpid());
}

HANDLE OpenProcess(DWORD, BOOL, DWORD processId) {
    if (MustFail("OpenProcess")) {
        return nullptr;
    }
    if (processId != GetCurrentProcessId()) {
        SetLastError(ERROR_ACCESS_DENIED);
        return nullptr;
    }
    auto* process = new (std::nothrow) Process;
    if (process == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return ToHandle(process);
}

BOOL SetPriorityClass(HANDLE process, DWORD priorityClass) {
    if (MustFail("SetPriorityClass") || !IsProcess(process)) {
        return FALSE;
    }
    Locked<Settings>()->priorityClass = priorityClass;
    return TRUE;
}

DWORD GetPriorityClass(HANDLE process) {
    return IsProcess(process) ? Locked<Settings>()->priorityClass : 0;
}

BOOL GetProcessMemoryInfo(HANDLE process, PROCESS_MEMORY_COUNTERS* counters, DWORD size) {
    if (MustFail("GetProcessMemoryInfo") || !IsProcess(process)) {
        return FALSE;
    }
    if (size < sizeof *counters) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    return WithinSystem(FALSE, [&]() -> BOOL {
        SIZE_T total = 0;
        SIZE_T resident = 0;
        SIZE_T shared = 0;
        SIZE_T text = 0;
        SIZE_T library = 0;
        SIZE_T data = 0;
        std::ifstream("/proc/self/statm") >> total >> resident >> shared >> text >> library >> data;
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        const auto page = static_cast<SIZE_T>(sysconf(_SC_PAGESIZE));

        *counters = {};
        counters->cb = sizeof *counters;
        counters->PageFaultCount = static_cast<DWORD>(usage.ru_minflt + usage.ru_majflt);
        counters->WorkingSetSize = resident * page;
        counters->PeakWorkingSetSize = static_cast<SIZE_T>(usage.ru_maxrss) * 1024;
        counters->PagefileUsage = data * page;
        counters->PeakPagefileUsage = counters->PagefileUsage;
        return TRUE;
    });
}

void OutputDebugStringW(LPCWSTR text) {
    if (!MustFail("OutputDebugStringW") && text != nullptr) {
        WithinSystem(FALSE, [&] { return RecordShown({"OutputDebugStringW", {text}, {}}), TRUE; });
    }
}
