#pragma once

#include <windows.h>
#include <d3d9.h>

#include "velm/core/Export.h"

namespace velm {

class D3D9ResourceBase;

/// Runs before a resource gives up its Direct3D objects.
typedef void (*LostCallback)(D3D9ResourceBase* resource, void* user);

/// Runs after a resource has rebuilt its Direct3D objects, or failed to.
typedef void (*RecoverLostCallback)(D3D9ResourceBase* resource, void* user, IDirect3DDevice9* device,
                                    const D3DPRESENT_PARAMETERS& presentParameters);

/// A resource that outlives the loss of its Direct3D 9 device. A derived class registers itself once it has
/// something to restore; from then until its destruction D3D9ResourceManager tells it of losses and
/// recoveries.
///
/// A copy has the source's callbacks and user pointer, and registers for itself when the source is or was
/// registered; an object that is assigned to keeps its own registration.
///
/// Threads: one at a time for each object. Objects may be registered, copied and destroyed on any thread, but
/// not during a broadcast, nor during Initialize or Finalize of the manager.
class VELM_UTIL_API D3D9ResourceBase {
public:
    D3D9ResourceBase();
    /// @{
    /// Copies callbacks and user pointer; see above for the registration.
    D3D9ResourceBase(const D3D9ResourceBase& other);
    D3D9ResourceBase& operator=(const D3D9ResourceBase& other);
    /// @}
    virtual ~D3D9ResourceBase();

    /// Sets the callbacks of this resource.
    /// @param user  handed back to both
    /// @param lost, recoverLost  null for none. They neither register nor destroy resources.
    void SetUserCallback(void* user, LostCallback lost, RecoverLostCallback recoverLost);
    /// Back to no callbacks.
    void UnsetUserCallback();

    /// The loss for this resource alone: the lost callback, then OnLostImpl.
    void OnLost();

    /// The recovery for this resource alone: OnRecoverLostImpl, then the recovery callback.
    void OnRecoverLost(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters);

protected:
    /// Joins the broadcasts. Does nothing when the resource is registered already; without a manager, or
    /// without memory, it stays unregistered and a later call tries again.
    void Register();

    /// Releases what does not survive the loss.
    virtual void OnLostImpl() = 0;

    /// Rebuilds what was released.
    /// @param device  works again; the caller's
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
