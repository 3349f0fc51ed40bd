#pragma once

#include <windows.h>
#include <d3d9.h>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Broadcasts device loss and recovery to every registered D3D9ResourceBase. The process has one manager,
/// from Initialize to Finalize. Without it broadcasts do nothing, and a resource that tries to register must
/// try again later: call Initialize before the first resource is bound.
///
/// Threads: make all four calls on the thread that owns the device.
class VELM_UTIL_API D3D9ResourceManager {
public:
    D3D9ResourceManager() = delete;

    /// Creates the manager, unless there is one.
    /// @return 0; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY: there is no manager
    static ErrorCode Initialize();

    /// Destroys the manager, if there is one, without notifying any resource. Resources registered with it
    /// never receive broadcasts again, not even from a later manager.
    /// @return 0
    static ErrorCode Finalize();

    /// Broadcasts the loss: calls each resource's lost callback, then its OnLostImpl; the order of resources
    /// is unspecified. Call before IDirect3DDevice9::Reset, which fails while a default-pool resource exists.
    static void OnLost();

    /// Broadcasts the recovery: calls each resource's OnRecoverLostImpl, then its recovery callback.
    /// @param device  the working device; owned by the caller
    /// @param presentParameters  as passed to Reset; copied once for the whole broadcast
    /// Threads: no other thread may register or unregister resources meanwhile.
    static void OnRecoverLost(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters);
};

}  // namespace velm
