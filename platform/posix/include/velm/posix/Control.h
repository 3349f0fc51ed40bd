/// @file
/// Controls the Linux implementation of the Windows interfaces, for tests.
/// Threads: any.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace velm::posix {

/// Makes calls of a Windows function fail the way that function reports failure.
/// @param name  function name, such as "CreateFileW"
/// @param lastError  result of GetLastError afterwards
/// @param skip  number of calls that still succeed
/// @param count  number of calls that then fail
void FailCall(const char* name, DWORD lastError, unsigned int skip = 0, unsigned int count = 1);

/// Starts recording calls, including failed ones.
void StartRecording();

/// Returns the names of the calls since StartRecording, in order.
std::vector<std::string> RecordedCalls();

/// A call with a visible effect, and its arguments in parameter order: strings, and numbers except handles.
struct ShownCall {
    std::string name;
    std::vector<std::wstring> texts;
    std::vector<long long> numbers;
};

/// Returns the successful calls of MessageBoxW, SetWindowTextW, TextOutW, LoadImageW, OutputDebugStringW and
/// AvSetMmThreadPriority since StartRecording, in order.
std::vector<ShownCall> ShownCalls();

/// A display device, as reported by EnumDisplayDevicesW and GetDeviceCaps.
struct Display {
    std::wstring name;
    DWORD stateFlags = 0;
    int width = 0;
    int height = 0;
};

/// Sets the display devices; none by default.
void SetDisplays(std::vector<Display> displays);

/// Returns the number of open device contexts.
unsigned int OpenDeviceContexts();

/// Returns the number of open handles.
unsigned int OpenHandles();

/// Overrides the path of the executable.
void SetExecutablePath(const std::wstring& path);

/// Fixes the performance counter's reading and frequency.
void SetPerformanceCounter(unsigned long long count, unsigned long long frequency);

/// Sets the system's OEM code page; 437 by default.
void SetOemCodePage(UINT codePage);

/// Undoes everything above.
void Reset();

}  // namespace velm::posix
