#pragma once

#include <memory>

#include "velm/D3D9ResourceBase.h"

namespace velm {

/// A surface that outlives the loss of its device. A surface of the default pool is released on loss; if it
/// is a render target or a depth-stencil surface, and nothing else, recovery creates one of the same size,
/// format and multisampling. Contents are not kept. Surfaces of other pools stay as they are.
///
/// A copy shares the surface.
class VELM_UTIL_API D3D9Surface : public D3D9ResourceBase {
public:
    /// Empty and not registered.
    D3D9Surface();
    /// @{
    /// Shares the surface of the other, with a reference of its own.
    D3D9Surface(const D3D9Surface& other);
    D3D9Surface& operator=(const D3D9Surface& other);
    /// @}
    ~D3D9Surface() override;

    /// Replaces the surface and registers the object with the current manager. Without a manager the object
    /// stays unregistered, also once there is one: it then misses the loss, and IDirect3DDevice9::Reset fails
    /// with D3DERR_INVALIDCALL (0x8876086C) while its surface lives. Remedy: bind again after
    /// D3D9ResourceManager::Initialize; to bind the surface from GetSurface, AddRef it first.
    /// @param surface  one reference to it passes from the caller to the object; null leaves the object
    ///                 empty, with the last surface's description
    void Bind(IDirect3DSurface9* surface);

    /// @return the surface, without a reference for the caller; null when the object is empty: before Bind,
    ///         between loss and recovery, and after a recovery that failed
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
    D3DSURFACE_DESC m_desc;  // of the last surface
};

}  // namespace velm
