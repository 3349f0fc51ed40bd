#pragma once

#include <unordered_map>

#include "velm/core/Mutex.h"
#include "velm/D3D9ResourceBase.h"

namespace velm {

/// The table of registered resources, which it does not own. Registering, unregistering and the recovery
/// broadcast lock the mutex; the loss broadcast does not.
class D3D9ResourceManagerImpl {
public:
    /// The id of an unregistered resource.
    static constexpr unsigned long long kNotRegistered = ~0ULL;

    /// The process-wide manager; null before Initialize and after Finalize. A raw pointer, so that resources
    /// destroyed after the library's static objects can still read it.
    static D3D9ResourceManagerImpl* s_pCurrent;

    D3D9ResourceManagerImpl();
    virtual ~D3D9ResourceManagerImpl();
    D3D9ResourceManagerImpl(const D3D9ResourceManagerImpl&) = delete;
    D3D9ResourceManagerImpl& operator=(const D3D9ResourceManagerImpl&) = delete;

    void Initialize();
    void Clear();

    /// @return the resource's id: 1, 2, 3, ...; kNotRegistered when out of memory
    unsigned long long Add(D3D9ResourceBase* resource);

    /// Removes the entry `number` if it belongs to this resource: an earlier manager may have given it the
    /// same id that this manager gave to another.
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
