#pragma once

#include <windows.h>
#include <d3d9.h>

#include <set>

namespace velm::test {

class FakeDevice9;

/// A surface that counts its references and tells its device when the last is gone.
class FakeSurface9 final : public IDirect3DSurface9 {
public:
    FakeSurface9(FakeDevice9& device, const D3DSURFACE_DESC& desc) : m_device(device), m_desc(desc) {}

    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return ++m_count; }
    ULONG WINAPI Release() override;
    HRESULT WINAPI GetDesc(D3DSURFACE_DESC* desc) override {
        *desc = m_desc;
        return D3D_OK;
    }
    HRESULT WINAPI LockRect(D3DLOCKED_RECT*, const RECT*, DWORD) override { return D3DERR_INVALIDCALL; }
    HRESULT WINAPI UnlockRect() override { return D3DERR_INVALIDCALL; }

    ULONG Count() const { return m_count; }

private:
    FakeDevice9& m_device;
    D3DSURFACE_DESC m_desc;
    ULONG m_count = 1;
};

/// A device that creates surfaces, fails to when told to, and cannot be reset while one of its default pool
/// lives.
class FakeDevice9 final : public IDirect3DDevice9 {
public:
    bool failCreation = false;
    std::set<FakeSurface9*> living;
    BOOL lastDiscard = -1;
    BOOL lastLockable = -1;

    FakeSurface9* Create(const D3DSURFACE_DESC& desc) {
        return *living.insert(new FakeSurface9(*this, desc)).first;
    }

    HRESULT WINAPI Reset(D3DPRESENT_PARAMETERS*) override {
        for (FakeSurface9* const surface : living) {
            D3DSURFACE_DESC desc{};
            surface->GetDesc(&desc);
            if (desc.Pool == D3DPOOL_DEFAULT) {
                return D3DERR_INVALIDCALL;
            }
        }
        return D3D_OK;
    }
    HRESULT WINAPI CreateRenderTarget(UINT width, UINT height, D3DFORMAT format,
                                      D3DMULTISAMPLE_TYPE multiSample, DWORD quality, BOOL lockable,
                                      IDirect3DSurface9** surface, HANDLE*) override {
        lastLockable = lockable;
        return Create({format, D3DRTYPE_SURFACE, D3DUSAGE_RENDERTARGET, D3DPOOL_DEFAULT, multiSample, quality,
                       width, height},
                      surface);
    }
    HRESULT WINAPI CreateDepthStencilSurface(UINT width, UINT height, D3DFORMAT format,
                                             D3DMULTISAMPLE_TYPE multiSample, DWORD quality, BOOL discard,
                                             IDirect3DSurface9** surface, HANDLE*) override {
        lastDiscard = discard;
        return Create({format, D3DRTYPE_SURFACE, D3DUSAGE_DEPTHSTENCIL, D3DPOOL_DEFAULT, multiSample, quality,
                       width, height},
                      surface);
    }

    // What the library does not call.
    HRESULT WINAPI QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG WINAPI AddRef() override { return 1; }
    ULONG WINAPI Release() override { return 1; }
    HRESULT WINAPI Present(const RECT*, const RECT*, HWND, const void*) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI GetBackBuffer(UINT, UINT, D3DBACKBUFFER_TYPE, IDirect3DSurface9**) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI GetRenderTargetData(IDirect3DSurface9*, IDirect3DSurface9*) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI StretchRect(IDirect3DSurface9*, const RECT*, IDirect3DSurface9*, const RECT*,
                               D3DTEXTUREFILTERTYPE) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI CreateOffscreenPlainSurface(UINT, UINT, D3DFORMAT, D3DPOOL, IDirect3DSurface9**,
                                               HANDLE*) override {
        return D3DERR_INVALIDCALL;
    }
    HRESULT WINAPI SetRenderTarget(DWORD, IDirect3DSurface9*) override { return D3DERR_INVALIDCALL; }
    HRESULT WINAPI SetDepthStencilSurface(IDirect3DSurface9*) override { return D3DERR_INVALIDCALL; }
    HRESULT WINAPI Clear(DWORD, const D3DRECT*, DWORD, D3DCOLOR, float, DWORD) override {
        return D3DERR_INVALIDCALL;
    }

private:
    HRESULT Create(const D3DSURFACE_DESC& desc, IDirect3DSurface9** surface) {
        if (failCreation) {
            return D3DERR_NOTAVAILABLE;
        }
        *surface = Create(desc);
        return D3D_OK;
    }
};

inline ULONG WINAPI FakeSurface9::Release() {
    const ULONG left = --m_count;
    if (left == 0) {
        m_device.living.erase(this);
        delete this;
    }
    return left;
}

}  // namespace velm::test
