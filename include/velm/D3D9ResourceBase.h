#pragma once

#include <windows.h>
#include <d3d9.h>

#include "velm/core/Export.h"

namespace velm {

class D3D9ResourceBase;

/// Called before a resource releases its Direct3D objects.
typedef void (*LostCallback)(D3D9ResourceBase* resource, void* user);

/// Called after a resource has recreated its Direct3D objects, or failed to.
typedef void (*RecoverLostCallback)(D3D9ResourceBase* resource, void* user, IDirect3DDevice9* device,
                                    const D3DPRESENT_PARAMETERS& presentParameters);

/// A resource that survives the loss of its Direct3D 9 device. A derived class registers itself once it has
/// something to restore; from then until its destruction, D3D9ResourceManager notifies it of losses and
/// recoveries.
///
/// A copy has the source's callbacks and user pointer, and a registration of its own if the source is or was
/// registered. Assignment keeps a registration that the target already has.
///
/// Threads: one at a time per object. Objects may be registered, copied and destroyed on any thread, but not
/// during a broadcast or during the manager's Initialize or Finalize.
class VELM_UTIL_API D3D9ResourceBase {
public:
    D3D9ResourceBase();
    /// @{
    /// Copies callbacks and user pointer; see above for the registration.
    D3D9ResourceBase(const D3D9ResourceBase& other);
    D3D9ResourceBase& operator=(const D3D9ResourceBase& other);
    /// @}
    virtual ~D3D9ResourceBase();

    /// Sets this resource's callbacks.
    /// @param user  passed to both; owned by the caller
    /// @param lost, recoverLost  null for none. They must not register or destroy resources.
    void SetUserCallback(void* user, LostCallback lost, RecoverLostCallback recoverLost);
    /// Removes the callbacks.
    void UnsetUserCallback();

    /// Handles a loss for this resource alone: calls the lost callback, then OnLostImpl.
    void OnLost();

    /// Handles a recovery for this resource alone: calls OnRecoverLostImpl, then the recovery callback.
    void OnRecoverLost(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters);

protected:
    /// Registers the resource for broadcasts, unless it is registered. Without a manager or memory it stays
    /// unregistered; a later call tries again.
    void Register();

    /// Releases what does not survive the loss.
    virtual void OnLostImpl() = 0;

    /// Recreates what was released.
    /// @param device  the working device; owned by the caller
    virtual void OnRecoverLostImpl(IDirect3DDevice9* device,
                                   const D3DPRESENT_PARAMETERS& presentParameters) = 0;

private:
    void CallUsersLost();
    void CallUsersRecoverLost(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters);

    unsigned long long m_nRegisterId;
    void* m_pUser;
    LostCallback m_pLostCallback;
    RecoverLostCallback m_pRecoverLostCallback;
};

}  // namespace velm
