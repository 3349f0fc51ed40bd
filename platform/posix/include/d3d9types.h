/// @file
/// The Direct3D 9 structures and constants that the libraries and their clients use.
#pragma once

#include "guiddef.h"
#include "windef.h"

using D3DCOLOR = DWORD;

#define D3DCOLOR_XRGB(red, green, blue) \
    (static_cast<D3DCOLOR>(0xFF000000U | ((red)&0xFFU) << 16 | ((green)&0xFFU) << 8 | ((blue)&0xFFU)))

#define D3DCLEAR_TARGET 0x1U
#define D3DCLEAR_ZBUFFER 0x2U
#define D3DCLEAR_STENCIL 0x4U
#define D3DLOCK_READONLY 0x10U
#define D3DPRESENTFLAG_DISCARD_DEPTHSTENCIL 0x2U
#define D3DPRESENT_INTERVAL_IMMEDIATE 0x80000000U
#define D3DUSAGE_RENDERTARGET 0x1U
#define D3DUSAGE_DEPTHSTENCIL 0x2U
#define D3DADAPTER_DEFAULT 0U

enum D3DBACKBUFFER_TYPE : int { D3DBACKBUFFER_TYPE_MONO = 0 };
enum D3DDEVTYPE : int { D3DDEVTYPE_HAL = 1, D3DDEVTYPE_REF = 2 };
enum D3DFORMAT : DWORD {
    D3DFMT_UNKNOWN = 0,
    D3DFMT_A8R8G8B8 = 21,
    D3DFMT_X8R8G8B8 = 22,
    D3DFMT_D24S8 = 75,
};
enum D3DMULTISAMPLE_TYPE : int { D3DMULTISAMPLE_NONE = 0, D3DMULTISAMPLE_4_SAMPLES = 4 };
enum D3DPOOL : int { D3DPOOL_DEFAULT = 0, D3DPOOL_MANAGED = 1, D3DPOOL_SYSTEMMEM = 2 };
enum D3DRESOURCETYPE : int { D3DRTYPE_SURFACE = 1 };
enum D3DSWAPEFFECT : int { D3DSWAPEFFECT_DISCARD = 1 };
enum D3DTEXTUREFILTERTYPE : int { D3DTEXF_NONE = 0 };

struct D3DADAPTER_IDENTIFIER9 {
    char Driver[512];
    char Description[512];
    char DeviceName[32];
    LARGE_INTEGER DriverVersion;
    DWORD VendorId;
    DWORD DeviceId;
    DWORD SubSysId;
    DWORD Revision;
    GUID DeviceIdentifier;
    DWORD WHQLLevel;
};

struct D3DDISPLAYMODE {
    UINT Width;
    UINT Height;
    UINT RefreshRate;
    D3DFORMAT Format;
};

struct D3DLOCKED_RECT {
    INT Pitch;
    void* pBits;
};

struct D3DPRESENT_PARAMETERS {
    UINT BackBufferWidth;
    UINT BackBufferHeight;
    D3DFORMAT BackBufferFormat;
    UINT BackBufferCount;
    D3DMULTISAMPLE_TYPE MultiSampleType;
    DWORD MultiSampleQuality;
    D3DSWAPEFFECT SwapEffect;
    HWND hDeviceWindow;
    BOOL Windowed;
    BOOL EnableAutoDepthStencil;
    D3DFORMAT AutoDepthStencilFormat;
    DWORD Flags;
    UINT FullScreen_RefreshRateInHz;
    UINT PresentationInterval;
};

struct D3DRECT {
    LONG x1;
    LONG y1;
    LONG x2;
    LONG y2;
};

struct D3DSURFACE_DESC {
    D3DFORMAT Format;
    D3DRESOURCETYPE Type;
    DWORD Usage;
    D3DPOOL Pool;
    D3DMULTISAMPLE_TYPE MultiSampleType;
    DWORD MultiSampleQuality;
    UINT Width;
    UINT Height;
};
