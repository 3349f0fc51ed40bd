/// @file
/// The Direct3D 9 interfaces, for the tests' fake objects: Linux has no Direct3D. IDirect3D9 is complete;
/// the others declare, in Windows' order, only the methods that the libraries and their clients call. Those
/// that only clients call fail unless they are overridden.
#pragma once

#include "d3d9caps.h"
#include "d3d9types.h"
#include "unknwn.h"

#define D3D_SDK_VERSION 32U

#define D3DCREATE_SOFTWARE_VERTEXPROCESSING 0x20U
#define D3DCREATE_HARDWARE_VERTEXPROCESSING 0x40U

#define D3D_OK S_OK
#define D3DERR_DEVICENOTRESET (static_cast<HRESULT>(0x88760869))
#define D3DERR_NOTAVAILABLE (static_cast<HRESULT>(0x8876086A))
#define D3DERR_INVALIDCALL (static_cast<HRESULT>(0x8876086C))

class IDirect3DDevice9;

class IDirect3DSurface9 : public IUnknown {
public:
    virtual HRESULT WINAPI GetDesc(D3DSURFACE_DESC* desc) = 0;
    virtual HRESULT WINAPI LockRect(D3DLOCKED_RECT*, const RECT*, DWORD) { return D3DERR_INVALIDCALL; }
    virtual HRESULT WINAPI UnlockRect() { return D3DERR_INVALIDCALL; }
};

class IDirect3D9 : public IUnknown {
public:
    virtual HRESULT WINAPI RegisterSoftwareDevice(void* initialize) = 0;
    virtual UINT WINAPI GetAdapterCount() = 0;
    virtual HRESULT WINAPI GetAdapterIdentifier(UINT adapter, DWORD flags,
                                                D3DADAPTER_IDENTIFIER9* identifier) = 0;
    virtual UINT WINAPI GetAdapterModeCount(UINT adapter, D3DFORMAT format) = 0;
    virtual HRESULT WINAPI EnumAdapterModes(UINT adapter, D3DFORMAT format, UINT index,
                                            D3DDISPLAYMODE* mode) = 0;
    virtual HRESULT WINAPI GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) = 0;
    virtual HRESULT WINAPI CheckDeviceType(UINT adapter, D3DDEVTYPE type, D3DFORMAT display,
                                           D3DFORMAT backBuffer, BOOL windowed) = 0;
    virtual HRESULT WINAPI CheckDeviceFormat(UINT adapter, D3DDEVTYPE type, D3DFORMAT display, DWORD usage,
                                             D3DRESOURCETYPE resource, D3DFORMAT format) = 0;
    virtual HRESULT WINAPI CheckDeviceMultiSampleType(UINT adapter, D3DDEVTYPE type, D3DFORMAT surface,
                                                      BOOL windowed, D3DMULTISAMPLE_TYPE multiSample,
                                                      DWORD* qualityLevels) = 0;
    virtual HRESULT WINAPI CheckDepthStencilMatch(UINT adapter, D3DDEVTYPE type, D3DFORMAT display,
                                                  D3DFORMAT renderTarget, D3DFORMAT depthStencil) = 0;
    virtual HRESULT WINAPI CheckDeviceFormatConversion(UINT adapter, D3DDEVTYPE type, D3DFORMAT source,
                                                       D3DFORMAT target) = 0;
    virtual HRESULT WINAPI GetDeviceCaps(UINT adapter, D3DDEVTYPE type, D3DCAPS9* caps) = 0;
    virtual HMONITOR WINAPI GetAdapterMonitor(UINT adapter) = 0;
    virtual HRESULT WINAPI CreateDevice(UINT adapter, D3DDEVTYPE type, HWND focusWindow, DWORD behavior,
                                        D3DPRESENT_PARAMETERS* presentParameters,
                                        IDirect3DDevice9** device) = 0;
};

class IDirect3DDevice9 : public IUnknown {
public:
    virtual HRESULT WINAPI Reset(D3DPRESENT_PARAMETERS* presentParameters) = 0;
    virtual HRESULT WINAPI Present(const RECT*, const RECT*, HWND, const void*) { return D3DERR_INVALIDCALL; }
    virtual HRESULT WINAPI GetBackBuffer(UINT, UINT, D3DBACKBUFFER_TYPE, IDirect3DSurface9**) {
        return D3DERR_INVALIDCALL;
    }
    virtual HRESULT WINAPI CreateRenderTarget(UINT width, UINT height, D3DFORMAT format,
                                              D3DMULTISAMPLE_TYPE multiSample, DWORD quality, BOOL lockable,
                                              IDirect3DSurface9** surface, HANDLE* sharedHandle) = 0;
    virtual HRESULT WINAPI CreateDepthStencilSurface(UINT width, UINT height, D3DFORMAT format,
                                                     D3DMULTISAMPLE_TYPE multiSample, DWORD quality,
                                                     BOOL discard, IDirect3DSurface9** surface,
                                                     HANDLE* sharedHandle) = 0;
    virtual HRESULT WINAPI GetRenderTargetData(IDirect3DSurface9*, IDirect3DSurface9*) {
        return D3DERR_INVALIDCALL;
    }
    virtual HRESULT WINAPI StretchRect(IDirect3DSurface9*, const RECT*, IDirect3DSurface9*, const RECT*,
                                       D3DTEXTUREFILTERTYPE) {
        return D3DERR_INVALIDCALL;
    }
    virtual HRESULT WINAPI CreateOffscreenPlainSurface(UINT, UINT, D3DFORMAT, D3DPOOL, IDirect3DSurface9**,
                                                       HANDLE*) {
        return D3DERR_INVALIDCALL;
    }
    virtual HRESULT WINAPI SetRenderTarget(DWORD, IDirect3DSurface9*) { return D3DERR_INVALIDCALL; }
    virtual HRESULT WINAPI SetDepthStencilSurface(IDirect3DSurface9*) { return D3DERR_INVALIDCALL; }
    virtual HRESULT WINAPI Clear(DWORD, const D3DRECT*, DWORD, D3DCOLOR, float, DWORD) {
        return D3DERR_INVALIDCALL;
    }
};
