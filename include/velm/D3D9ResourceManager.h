#pragma once

#include <windows.h>
#include <d3d9.h>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Tells every registered D3D9ResourceBase of the loss and the recovery of the device. Between Initialize and
/// Finalize there is one manager in the process. Outside, broadcasts do nothing, and a resource that tries to
/// register stays unregistered until it registers again: call Initialize before the first resource is bound.
///
/// Threads: all four calls from one, which also owns the device.
class VELM_UTIL_API D3D9ResourceManager {
public:
    D3D9ResourceManager() = delete;

    /// Creates the manager. When there is one already, nothing changes.
    /// @return 0; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY: there is no manager
    static ErrorCode Initialize();

    /// Destroys the manager, if there is one. No resource is called. Resources that were registered with it
    /// stay unregistered from then on, also with a later manager.
    /// @return 0
    static ErrorCode Finalize();

    /// The device is lost: each resource's lost callback, then its OnLostImpl, in no particular order of the
    /// resources. To be called before IDirect3DDevice9::Reset, which fails while a resource of the default
    /// pool lives.
    static void OnLost();

    /// The device works again: each resource's OnRecoverLostImpl, then its recovery callback. No other thread
    /// registers or unregisters meanwhile.
    /// @param device  the caller's
    /// @param presentParameters  those of the reset; copied once for the whole broadcast
    static void OnRecoverLost(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters);
};

}  // namespace velm
