/// @file
/// How tests steer the Linux stand-ins for Windows' interfaces. Everything here may be used from any thread.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace velm::posix {

/// Makes calls of one Windows function fail, in the way that function reports failure.
/// @param name  the function's name, such as "CreateFileW"
/// @param lastError  what GetLastError returns afterwards
/// @param skip  how many calls succeed first
/// @param count  how many calls fail then
void FailCall(const char* name, DWORD lastError, unsigned int skip = 0, unsigned int count = 1);

/// Starts a record of the calls made, failed ones included.
void StartRecording();

/// The names of the calls since StartRecording, in order.
std::vector<std::string> RecordedCalls();

/// What a call that shows or writes something was handed: its texts, and its numbers without the handles,
/// each in the order of the parameters.
struct ShownCall {
    std::string name;
    std::vector<std::wstring> texts;
    std::vector<long long> numbers;
};

/// The calls of MessageBoxW, SetWindowTextW, TextOutW, LoadImageW, OutputDebugStringW and
/// AvSetMmThreadPriority that succeeded since StartRecording, in order.
std::vector<ShownCall> ShownCalls();

/// A display device, as EnumDisplayDevicesW and a device context of its name give it.
struct Display {
    std::wstring name;
    DWORD stateFlags = 0;
    int width = 0;
    int height = 0;
};

/// Sets the display devices, none at first.
void SetDisplays(std::vector<Display> displays);

/// How many device contexts are open.
unsigned int OpenDeviceContexts();

/// How many handles are open.
unsigned int OpenHandles();

/// Sets the path of the process's executable.
void SetExecutablePath(const std::wstring& path);

/// Gives the clock a fixed reading and frequency.
void SetPerformanceCounter(unsigned long long count, unsigned long long frequency);

/// Sets the system's OEM code page, 437 at first.
void SetOemCodePage(UINT codePage);

/// Takes back everything above.
void Reset();

}  // namespace velm::posix
