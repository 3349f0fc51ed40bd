#include "velm/Scheduling.h"

#include <windows.h>
#include <avrt.h>

SchedulingProcess::SchedulingProcess() = default;
SchedulingProcess::SchedulingProcess(const SchedulingProcess& other) = default;
SchedulingProcess& SchedulingProcess::operator=(const SchedulingProcess& other) = default;
SchedulingProcess::~SchedulingProcess() = default;

bool SchedulingProcess::SetPriorityHigh() {
    return SetPriorityClass(GetCurrentProcess(), HIGH_PRIORITY_CLASS) != FALSE;
}

SchedulingThread::SchedulingThread() : mTaskHandle(nullptr) {}

SchedulingThread::SchedulingThread(const SchedulingThread&) : mTaskHandle(nullptr) {}

SchedulingThread& SchedulingThread::operator=(const SchedulingThread&) {
    return *this;
}

SchedulingThread::~SchedulingThread() {
    EndThreadPriority();
}

bool SchedulingThread::StartThreadPriorityHigh() {
    DWORD taskIndex = 0;
    mTaskHandle = AvSetMmThreadCharacteristicsW(L"Audio", &taskIndex);
    if (mTaskHandle == nullptr) {
        return false;
    }
    if (AvSetMmThreadPriority(mTaskHandle, AVRT_PRIORITY_CRITICAL)) {
        return true;
    }
    const DWORD reason = GetLastError();
    AvRevertMmThreadCharacteristics(mTaskHandle);
    SetLastError(reason);
    mTaskHandle = nullptr;
    return false;
}

bool SchedulingThread::EndThreadPriority() {
    if (mTaskHandle == nullptr || !AvRevertMmThreadCharacteristics(mTaskHandle)) {
        return false;
    }
    mTaskHandle = nullptr;
    return true;
}
