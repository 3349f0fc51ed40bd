#pragma once

#include <windows.h>
#include <d3d9.h>

#include "velm/UtilErrorCode.h"

namespace velm {

/// The facts about one display adapter. A new context is all zero.
struct VELM_UTIL_API D3d9AdapterContext {
    D3d9AdapterContext();
    /// @{
    /// Copies the facts and the pointer; adds no reference.
    D3d9AdapterContext(const D3d9AdapterContext& other);
    D3d9AdapterContext& operator=(const D3d9AdapterContext& other);
    /// @}

    /// Reads identifier, capabilities of the hardware device and current display mode, in this order. Stops
    /// at the first one that cannot be read, which keeps its old value, as do those after it.
    /// @param d3d  owned by the caller; stored without adding a reference
    /// @param adapter  ordinal, 0 for the primary adapter
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null `d3d` (nothing changes);
    ///         VELM_ERROR_UTIL_D3D9_FAILED
    /// Threads: one at a time.
    ErrorCode Setup(IDirect3D9* d3d, UINT adapter);

    IDirect3D9* m_pD3d9;                  ///< as passed to Setup; no reference of its own
    UINT m_nAdapter;                      ///< as passed to Setup
    D3DADAPTER_IDENTIFIER9 m_identifier;  ///< names, driver, PCI ids
    D3DCAPS9 m_caps;                      ///< of the hardware device
    D3DDISPLAYMODE m_displayMode;         ///< the current display mode
};

}  // namespace velm
