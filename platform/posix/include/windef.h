/// @file
/// Windows' basic types and constants, with the sizes of 64-bit Windows.
#pragma once

#include <cstddef>
#include <cstdint>

using BOOL = int;
using BYTE = unsigned char;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using INT = int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using HRESULT = std::int32_t;

using CHAR = char;
using WCHAR = wchar_t;  // holds one UTF-16 unit
using LPSTR = char*;
using LPCSTR = const char*;
using PCSTR = const char*;
using LPWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using PCWSTR = const wchar_t*;
using LPVOID = void*;
using PVOID = void*;
using LPCVOID = const void*;
using LPBOOL = BOOL*;
using LPDWORD = DWORD*;

using HANDLE = void*;
using HDC = struct HDC__*;
using HMODULE = struct HINSTANCE__*;
using HINSTANCE = HMODULE;
using HMONITOR = struct HMONITOR__*;
using HWND = struct HWND__*;
using FARPROC = LONG_PTR (*)();
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;

struct POINT {
    LONG x;
    LONG y;
};

union LARGE_INTEGER {
    LONGLONG QuadPart;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

#define WINAPI
#define CALLBACK
#define APIENTRY
#define TRUE 1
#define FALSE 0
#define MAX_PATH 260
