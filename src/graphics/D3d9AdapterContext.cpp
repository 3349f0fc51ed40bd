#include "velm/D3d9AdapterContext.h"

namespace velm {

D3d9AdapterContext::D3d9AdapterContext()
    : m_pD3d9(nullptr), m_nAdapter(0), m_identifier(), m_caps(), m_displayMode() {}

D3d9AdapterContext::D3d9AdapterContext(const D3d9AdapterContext& other) = default;
D3d9AdapterContext& D3d9AdapterContext::operator=(const D3d9AdapterContext& other) = default;

ErrorCode D3d9AdapterContext::Setup(IDirect3D9* d3d, UINT adapter) {
    if (d3d == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    m_pD3d9 = d3d;
    m_nAdapter = adapter;
    if (FAILED(d3d->GetAdapterIdentifier(adapter, 0, &m_identifier)) ||
        FAILED(d3d->GetDeviceCaps(adapter, D3DDEVTYPE_HAL, &m_caps)) ||
        FAILED(d3d->GetAdapterDisplayMode(adapter, &m_displayMode))) {
        return VELM_ERROR_UTIL_D3D9_FAILED;
    }
    return 0;
}

}  // namespace velm
