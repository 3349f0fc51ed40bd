#include "velm/D3D9ResourceManager.h"

#include <memory>
#include <new>
#include <utility>

#include "graphics/D3D9ResourceManagerImpl.h"

namespace velm {

ErrorCode D3D9ResourceManager::Initialize() {
    if (D3D9ResourceManagerImpl::s_pCurrent != nullptr) {
        return 0;
    }
    try {
        auto manager = std::make_unique<D3D9ResourceManagerImpl>();
        manager->Initialize();
        D3D9ResourceManagerImpl::s_pCurrent = manager.release();
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
    return 0;
}

ErrorCode D3D9ResourceManager::Finalize() {
    const std::unique_ptr<D3D9ResourceManagerImpl> ends(
        std::exchange(D3D9ResourceManagerImpl::s_pCurrent, nullptr));
    return 0;
}

void D3D9ResourceManager::OnLost() {
    if (D3D9ResourceManagerImpl* const manager = D3D9ResourceManagerImpl::s_pCurrent) {
        manager->OnLost();
    }
}

void D3D9ResourceManager::OnRecoverLost(IDirect3DDevice9* device,
                                        const D3DPRESENT_PARAMETERS& presentParameters) {
    if (D3D9ResourceManagerImpl* const manager = D3D9ResourceManagerImpl::s_pCurrent) {
        manager->OnRecoverLost(device, presentParameters);
    }
}

}  // namespace velm
