/// @file
/// The capabilities of a Direct3D 9 device.
#pragma once

#include "d3d9types.h"

#define D3DCAPS_READ_SCANLINE 0x00020000U

/// The first members of Windows' structure; the rest is not used.
struct D3DCAPS9 {
    D3DDEVTYPE DeviceType;
    UINT AdapterOrdinal;
    DWORD Caps;
    DWORD Caps2;
    DWORD Caps3;
    DWORD PresentationIntervals;
};
