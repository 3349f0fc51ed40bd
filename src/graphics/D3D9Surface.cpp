#include "velm/D3D9Surface.h"

namespace velm {

D3D9Surface::D3D9Surface() : m_desc() {}

D3D9Surface::D3D9Surface(const D3D9Surface& other)
    : D3D9ResourceBase(other), m_pSurface(other.m_pSurface.get()), m_desc(other.m_desc) {
    if (m_pSurface != nullptr) {
        m_pSurface->AddRef();
    }
}

D3D9Surface& D3D9Surface::operator=(const D3D9Surface& other) {
    D3D9ResourceBase::operator=(other);
    m_desc = other.m_desc;
    if (other.m_pSurface != nullptr) {
        other.m_pSurface->AddRef();  // before the reset, for self-assignment
    }
    m_pSurface.reset(other.m_pSurface.get());
    return *this;
}

D3D9Surface::~D3D9Surface() = default;

void D3D9Surface::Bind(IDirect3DSurface9* surface) {
    if (surface != nullptr) {
        surface->GetDesc(&m_desc);
    }
    m_pSurface.reset(surface);
    Register();
}

IDirect3DSurface9* D3D9Surface::GetSurface() {
    return m_pSurface.get();
}

void D3D9Surface::OnLostImpl() {
    if (m_desc.Pool == D3DPOOL_DEFAULT) {
        m_pSurface.reset();
    }
}

void D3D9Surface::OnRecoverLostImpl(IDirect3DDevice9* device,
                                    const D3DPRESENT_PARAMETERS& presentParameters) {
    if (m_desc.Pool != D3DPOOL_DEFAULT) {
        return;
    }
    IDirect3DSurface9* surface = nullptr;
    if (m_desc.Usage == D3DUSAGE_RENDERTARGET) {
        surface = CreateRenderTarget(device, presentParameters);
    } else if (m_desc.Usage == D3DUSAGE_DEPTHSTENCIL) {
        surface = CreateDepthStencil(device, presentParameters);
    }
    if (surface != nullptr) {
        Bind(surface);
    }
}

IDirect3DSurface9* D3D9Surface::CreateRenderTarget(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS&) {
    IDirect3DSurface9* surface = nullptr;
    device->CreateRenderTarget(m_desc.Width, m_desc.Height, m_desc.Format, m_desc.MultiSampleType,
                               m_desc.MultiSampleQuality, FALSE, &surface, nullptr);
    return surface;
}

IDirect3DSurface9* D3D9Surface::CreateDepthStencil(IDirect3DDevice9* device,
                                                   const D3DPRESENT_PARAMETERS& presentParameters) {
    const bool discard = (presentParameters.Flags & D3DPRESENTFLAG_DISCARD_DEPTHSTENCIL) != 0;
    IDirect3DSurface9* surface = nullptr;
    device->CreateDepthStencilSurface(m_desc.Width, m_desc.Height, m_desc.Format, m_desc.MultiSampleType,
                                      m_desc.MultiSampleQuality, discard ? TRUE : FALSE, &surface, nullptr);
    return surface;
}

}  // namespace velm
