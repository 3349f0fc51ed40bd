/// @file
/// Display devices and device contexts.
#pragma once

#include "windef.h"

extern "C" {

#define HORZRES 8
#define VERTRES 10
#define DISPLAY_DEVICE_ATTACHED_TO_DESKTOP 0x1U
#define DISPLAY_DEVICE_PRIMARY_DEVICE 0x4U

struct DISPLAY_DEVICEW {
    DWORD cb;
    WCHAR DeviceName[32];
    WCHAR DeviceString[128];
    DWORD StateFlags;
    WCHAR DeviceID[128];
    WCHAR DeviceKey[128];
};

struct DEVMODEW;

BOOL EnumDisplayDevicesW(LPCWSTR device, DWORD index, DISPLAY_DEVICEW* displayDevice, DWORD flags);
HDC CreateDCW(LPCWSTR driver, LPCWSTR device, LPCWSTR port, const DEVMODEW* mode);
BOOL DeleteDC(HDC context);
/// Supports HORZRES and VERTRES; 0 for others.
int GetDeviceCaps(HDC context, int index);
BOOL TextOutW(HDC context, int x, int y, LPCWSTR text, int units);

}  // extern "C"
