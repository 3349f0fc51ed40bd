#pragma once

#include <windows.h>
#include <d3d9.h>

#include "velm/UtilErrorCode.h"

namespace velm {

/// The facts about one display adapter. A new context is all zero.
struct VELM_UTIL_API D3d9AdapterContext {
    D3d9AdapterContext();
    /// @{
    /// Copies the facts, and the pointer that is remembered.
    D3d9AdapterContext(const D3d9AdapterContext& other);
    D3d9AdapterContext& operator=(const D3d9AdapterContext& other);
    /// @}

    /// Reads the facts: identifier, capabilities of the hardware device, current display mode, in this order.
    /// Ends at the first that cannot be read; it and those after it keep what they held.
    /// @param d3d  the caller's; it is remembered, but not counted
    /// @param adapter  ordinal, 0 for the primary adapter
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for a null `d3d` (nothing changes);
    ///         VELM_ERROR_UTIL_D3D9_FAILED
    /// Threads: one at a time.
    ErrorCode Setup(IDirect3D9* d3d, UINT adapter);

    IDirect3D9* m_pD3d9;                  ///< as given to Setup; not counted
    UINT m_nAdapter;                      ///< as given to Setup
    D3DADAPTER_IDENTIFIER9 m_identifier;  ///< names, driver, PCI numbers
    D3DCAPS9 m_caps;                      ///< of the hardware device
    D3DDISPLAYMODE m_displayMode;         ///< the current one
};

}  // namespace velm
