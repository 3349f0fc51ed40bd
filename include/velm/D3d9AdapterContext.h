#pragma once

#include <windows.h>
#include <d3d9.h>

#include "velm/UtilErrorCode.h"

namespace velm {

/// The facts about one display adapter. A new context is all zero.
struct VELM_UTIL_API D3d9AdapterContext {
    D3d9AdapterContext();
    D3d9AdapterContext(const D3d9AdapterContext& other);
    D3d9AdapterContext& operator=(const D3d9AdapterContext& other);

    /// Reads the facts: identifier, capabilities of the hardware device, current display mode, in this order.
    /// Ends at the first that cannot be read; it and those after it keep what they held.
    /// @param d3d  the caller's; it is remembered, but not counted
    /// @param adapter  ordinal, 0 for the primary adapter
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null `d3d` (nothing changes);
    ///         VELM_ERROR_UTIL_D3D9_FAILED
    /// Threads: one at a time.
    ErrorCode Setup(IDirect3D9* d3d, UINT adapter);

    IDirect3D9* m_pD3d9;
    UINT m_nAdapter;
    D3DADAPTER_IDENTIFIER9 m_identifier;
    D3DCAPS9 m_caps;
    D3DDISPLAYMODE m_displayMode;
};

}  // namespace velm
