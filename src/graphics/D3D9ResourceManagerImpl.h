#pragma once

#include <unordered_map>

#include "velm/core/Mutex.h"
#include "velm/D3D9ResourceBase.h"

namespace velm {

/// The table of registered resources; it does not own them. Registering, unregistering and the recovery
/// broadcast hold the mutex, the loss broadcast does not.
class D3D9ResourceManagerImpl {
public:
    /// The number of a resource that is not registered.
    static constexpr unsigned long long kNotRegistered = ~0ULL;

    /// The process's manager; null outside Initialize and Finalize. A plain pointer, so that resources may
    /// still ask for it when they are destroyed after the library's static objects.
    static D3D9ResourceManagerImpl* s_pCurrent;

    D3D9ResourceManagerImpl();
    virtual ~D3D9ResourceManagerImpl();
    D3D9ResourceManagerImpl(const D3D9ResourceManagerImpl&) = delete;
    D3D9ResourceManagerImpl& operator=(const D3D9ResourceManagerImpl&) = delete;

    void Initialize();
    void Clear();

    /// @return the resource's number: 1, 2, 3, ...; kNotRegistered when memory runs out
    unsigned long long Add(D3D9ResourceBase* resource);

    /// Removes the entry `number` if it is this resource's: an earlier manager may have issued the same
    /// number to another.
    void Remove(unsigned long long number, const D3D9ResourceBase* resource);

    void OnLost();
    void OnRecoverLost(IDirect3DDevice9* device, const D3DPRESENT_PARAMETERS& presentParameters);

private:
    Mutex m_mutex;  // guards m_nLastId and m_resources
    unsigned long long m_nLastId;
    std::unordered_map<unsigned long long, D3D9ResourceBase*> m_resources;
    bool m_bActive;
};

}  // namespace velm
