#include "graphics/D3D9ResourceManagerImpl.h"

#include <new>

#include "graphics/MutexGuard.h"

namespace velm {

D3D9ResourceManagerImpl* D3D9ResourceManagerImpl::s_pCurrent = nullptr;

D3D9ResourceManagerImpl::D3D9ResourceManagerImpl() : m_nLastId(0), m_bActive(false) {}

D3D9ResourceManagerImpl::~D3D9ResourceManagerImpl() {
    Clear();
}

void D3D9ResourceManagerImpl::Initialize() {
    m_mutex.Initialize();
    m_bActive = true;
    m_nLastId = 0;
}

void D3D9ResourceManagerImpl::Clear() {
    m_bActive = false;
    m_resources.clear();
}

unsigned long long D3D9ResourceManagerImpl::Add(D3D9ResourceBase* resource) {
    const MutexGuard guard(m_mutex);
    try {
        m_resources.emplace(m_nLastId + 1, resource);
    } catch (const std::bad_alloc&) {
        return kNotRegistered;
    }
    return ++m_nLastId;
}

void D3D9ResourceManagerImpl::Remove(unsigned long long number, const D3D9ResourceBase* resource) {
    const MutexGuard guard(m_mutex);
    if (!m_bActive) {
        return;
    }
    const auto found = m_resources.find(number);
    if (found != m_resources.end() && found->second == resource) {
        m_resources.erase(found);
    }
}

void D3D9ResourceManagerImpl::OnLost() {
    for (const auto& [number, resource] : m_resources) {
        resource->OnLost();
    }
}

void D3D9ResourceManagerImpl::OnRecoverLost(IDirect3DDevice9* device,
                                            const D3DPRESENT_PARAMETERS& presentParameters) {
    const MutexGuard guard(m_mutex);
    const D3DPRESENT_PARAMETERS copy = presentParameters;
    for (const auto& [number, resource] : m_resources) {
        resource->OnRecoverLost(device, copy);
    }
}

}  // namespace velm
