/// @file
/// Kernel services: errors, handles, files, threads, waiting, modules, the clock.
#pragma once

#include "windef.h"

extern "C" {

#define ERROR_SUCCESS 0U
#define ERROR_FILE_NOT_FOUND 2U
#define ERROR_PATH_NOT_FOUND 3U
#define ERROR_ACCESS_DENIED 5U
#define ERROR_INVALID_HANDLE 6U
#define ERROR_NOT_ENOUGH_MEMORY 8U
#define ERROR_GEN_FAILURE 31U
#define ERROR_SHARING_VIOLATION 32U
#define ERROR_INVALID_PARAMETER 87U
#define ERROR_INSUFFICIENT_BUFFER 122U
#define ERROR_INVALID_NAME 123U
#define ERROR_MOD_NOT_FOUND 126U
#define ERROR_PROC_NOT_FOUND 127U
#define ERROR_INVALID_WINDOW_HANDLE 1400U
#define ERROR_NO_UNICODE_TRANSLATION 1113U
#define ERROR_TIMEOUT 1460U

DWORD GetLastError();
void SetLastError(DWORD code);

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

BOOL CloseHandle(HANDLE handle);

// Files. A path may use "\" or "/".
#define GENERIC_READ 0x80000000U
#define FILE_SHARE_READ 0x1U
#define FILE_SHARE_WRITE 0x2U
#define FILE_SHARE_DELETE 0x4U
#define OPEN_EXISTING 3U
#define FILE_FLAG_SEQUENTIAL_SCAN 0x08000000U

struct SECURITY_ATTRIBUTES;
struct OVERLAPPED;

/// Supports only reading existing files.
HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition,
                   DWORD flags, HANDLE templateFile);
BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD readSize, OVERLAPPED* overlapped);

// Settings. corecrt_wstdlib.h has _wdupenv_s.
BOOL SetEnvironmentVariableW(LPCWSTR name, LPCWSTR value);

// INI files. Relative paths refer to the current folder, not to the Windows folder. GetPrivateProfileStringW
// lists sections or keys when section or key is null.
UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR path);
DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultText, LPWSTR buffer, DWORD units,
                               LPCWSTR path);

// Threads. process.h has _beginthreadex.
#define INFINITE 0xFFFFFFFFU
#define WAIT_OBJECT_0 0U
#define WAIT_TIMEOUT 258U
#define WAIT_FAILED 0xFFFFFFFFU
#define STACK_SIZE_PARAM_IS_A_RESERVATION 0x00010000U

DWORD GetCurrentThreadId();
HANDLE GetCurrentThread();
/// Supports thread handles only.
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
/// Supports the calling thread only. Linux keeps the first 15 bytes of the name.
HRESULT SetThreadDescription(HANDLE thread, PCWSTR description);
void Sleep(DWORD milliseconds);

inline void YieldProcessor() {
    __builtin_ia32_pause();
}

// Waiting for the value at an address to change. Values of 4 bytes only.
BOOL WaitOnAddress(volatile void* address, void* compare, SIZE_T size, DWORD milliseconds);
void WakeByAddressSingle(void* address);
void WakeByAddressAll(void* address);

// Modules.
#define DLL_PROCESS_DETACH 0U
#define DLL_PROCESS_ATTACH 1U
#define DLL_THREAD_ATTACH 2U
#define DLL_THREAD_DETACH 3U

BOOL DisableThreadLibraryCalls(HMODULE module);
/// Finds loaded libraries, and "kernel32.dll", which is this layer.
HMODULE GetModuleHandleW(LPCWSTR name);
FARPROC GetProcAddress(HMODULE module, LPCSTR name);
/// Loads a shared object; a path may use "\" or "/".
HMODULE LoadLibraryW(LPCWSTR path);
BOOL FreeLibrary(HMODULE module);
DWORD GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size);

// Processes.
#define PROCESS_QUERY_INFORMATION 0x400U
#define NORMAL_PRIORITY_CLASS 0x20U
#define HIGH_PRIORITY_CLASS 0x80U

HANDLE GetCurrentProcess();
DWORD GetCurrentProcessId();
/// Supports the calling process only.
HANDLE OpenProcess(DWORD access, BOOL inheritHandle, DWORD processId);
/// Stores the class for GetPriorityClass; does not change the priority on Linux.
BOOL SetPriorityClass(HANDLE process, DWORD priorityClass);
DWORD GetPriorityClass(HANDLE process);

/// Always FALSE: on Linux threads run until the process is gone.
unsigned char RtlDllShutdownInProgress();

void OutputDebugStringW(LPCWSTR text);

// The clock.
BOOL QueryPerformanceCounter(LARGE_INTEGER* count);
BOOL QueryPerformanceFrequency(LARGE_INTEGER* frequency);

}  // extern "C"
