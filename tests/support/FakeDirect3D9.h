#pragma once

#include <windows.h>
#include <d3d9.h>

namespace velm::test {

/// Direct3D with one made-up adapter. Queries return its facts; from number `failFrom` on, they fail.
class FakeDirect3D9 final : public IDirect3D9 {
public:
    enum Query { kIdentifier, kCaps, kMode, kNone };

    D3DADAPTER_IDENTIFIER9 identifier{};
    D3DCAPS9 caps{};
    D3DDISPLAYMODE mode{};
    Query failFrom = kNone;
    unsigned int queries = 0;

    HRESULT WINAPI GetAdapterIdentifier(UINT, DWORD flags, D3DADAPTER_IDENTIFIER9* out) override {
        return flags == 0 ? Answer(kIdentifier, identifier, out) : D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI GetDeviceCaps(UINT, D3DDEVTYPE type, D3DCAPS9* out) override {
        return type == D3DDEVTYPE_HAL ? Answer(kCaps, caps, out) : D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI GetAdapterDisplayMode(UINT, D3DDISPLAYMODE* out) override {
        return Answer(kMode, mode, out);
    }

    // The library does not call these.
    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return 1; }
    ULONG WINAPI Release() override { return 1; }
    HRESULT WINAPI RegisterSoftwareDevice(void*) override { return D3DERR_INVALIDCALL; }
    UINT WINAPI GetAdapterCount() override { return 1; }
    UINT WINAPI GetAdapterModeCount(UINT, D3DFORMAT) override { return 0; }
    HRESULT WINAPI EnumAdapterModes(UINT, D3DFORMAT, UINT, D3DDISPLAYMODE*) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI CheckDeviceType(UINT, D3DDEVTYPE, D3DFORMAT, D3DFORMAT, BOOL) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI CheckDeviceFormat(UINT, D3DDEVTYPE, D3DFORMAT, DWORD, D3DRESOURCETYPE,
                                     D3DFORMAT) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI CheckDeviceMultiSampleType(UINT, D3DDEVTYPE, D3DFORMAT, BOOL, D3DMULTISAMPLE_TYPE,
                                              DWORD*) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI CheckDepthStencilMatch(UINT, D3DDEVTYPE, D3DFORMAT, D3DFORMAT, D3DFORMAT) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI CheckDeviceFormatConversion(UINT, D3DDEVTYPE, D3DFORMAT, D3DFORMAT) override {
        return D3DERR_INVALIDCALL;
    }
    HMONITOR WINAPI GetAdapterMonitor(UINT) override { return nullptr; }
    HRESULT WINAPI CreateDevice(UINT, D3DDEVTYPE, HWND, DWORD, D3DPRESENT_PARAMETERS*,
                                IDirect3DDevice9**) override {
        return D3DERR_INVALIDCALL;
    }

private:
    template <typename T>
    HRESULT Answer(Query query, const T& fact, T* out) {
        ++queries;
        if (query >= failFrom) {
            return D3DERR_INVALIDCALL;
        }
        *out = fact;
        return D3D_OK;
    }
};

}  // namespace velm::test
