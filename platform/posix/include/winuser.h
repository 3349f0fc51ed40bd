/// @file
/// Windows, timers and messages. A window has only a class name and a text; a message loop delivers only
/// timer messages of its thread's windows and the quit message.
#pragma once

#include "windef.h"

extern "C" {

#define WM_QUIT 0x0012U
#define WM_TIMER 0x0113U
#define PM_REMOVE 0x0001U
#define MB_OK 0U
#define IDOK 1
#define IMAGE_BITMAP 0U
#define IMAGE_ICON 1U

using TIMERPROC = void(CALLBACK*)(HWND window, UINT message, UINT_PTR timer, DWORD time);
using HMENU = struct HMENU__*;

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};

/// Creates a window of the calling thread. Any class name is accepted.
HWND CreateWindowExW(DWORD extendedStyle, LPCWSTR className, LPCWSTR text, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter);
BOOL DestroyWindow(HWND window);
int GetClassNameW(HWND window, LPWSTR name, int size);
BOOL SetWindowTextW(HWND window, LPCWSTR text);
int GetWindowTextW(HWND window, LPWSTR text, int size);

/// Sets a window's timer. As on Windows its id is `timer`, even if that is 0; the result is then 1.
UINT_PTR SetTimer(HWND window, UINT_PTR timer, UINT milliseconds, TIMERPROC function);
BOOL KillTimer(HWND window, UINT_PTR timer);

/// Returns messages of all windows of the calling thread.
BOOL GetMessageW(MSG* message, HWND window, UINT first, UINT last);
/// Always removes the message.
BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT remove);
/// Calls the timer's function, even if the timer has been killed in the meantime.
LRESULT DispatchMessageW(const MSG* message);
void PostQuitMessage(int exitCode);

int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);
/// Loads nothing; returns a handle for any name.
HANDLE LoadImageW(HINSTANCE module, LPCWSTR name, UINT type, int width, int height, UINT flags);

}  // extern "C"
