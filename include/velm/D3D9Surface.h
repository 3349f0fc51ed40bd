#pragma once

#include <memory>

#include "velm/D3D9ResourceBase.h"

namespace velm {

/// A surface that survives the loss of its device. A default-pool surface is released on loss; if its usage
/// is render target or depth-stencil and nothing else, recovery creates one of the same size, format and
/// multisampling. Contents are lost. Surfaces of other pools are left alone.
///
/// A copy shares the surface.
class VELM_UTIL_API D3D9Surface : public D3D9ResourceBase {
public:
    /// Starts empty and unregistered.
    D3D9Surface();
    /// @{
    /// Shares the other's surface and adds a reference to it.
    D3D9Surface(const D3D9Surface& other);
    D3D9Surface& operator=(const D3D9Surface& other);
    /// @}
    ~D3D9Surface() override;

    /// Replaces the surface and registers the object with the current manager. Without a manager the object
    /// stays unregistered, even once there is one: it misses the loss, and IDirect3DDevice9::Reset fails with
    /// D3DERR_INVALIDCALL (0x8876086C) while the surface exists. To fix this, bind again after
    /// D3D9ResourceManager::Initialize; call AddRef first when binding the surface from GetSurface.
    /// @param surface  the object takes over one reference; null leaves the object empty, with the last
    ///                 surface's description
    void Bind(IDirect3DSurface9* surface);

    /// Returns the surface without adding a reference; null when the object is empty: before Bind, between
    /// loss and recovery, and after a failed recovery.
    IDirect3DSurface9* GetSurface();

protected:
    void OnLostImpl() override;
    void OnRecoverLostImpl(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters) override;

private:
    struct Releaser {
        void operator()(IDirect3DSurface9* surface) const { surface->Release(); }
    };

    IDirect3DSurface9* CreateRenderTarget(IDirect3DDevice9* device,
                                          const D3DPRESENT_PARAMETERS& presentParameters);
    IDirect3DSurface9* CreateDepthStencil(IDirect3DDevice9* device,
                                          const D3DPRESENT_PARAMETERS& presentParameters);

    std::unique_ptr<IDirect3DSurface9, Releaser> m_pSurface;
    D3DSURFACE_DESC m_desc;  // of the last surface bound
};

}  // namespace velm
