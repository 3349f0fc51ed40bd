#include "velm/D3D9ResourceBase.h"

#include "graphics/D3D9ResourceManagerImpl.h"

namespace velm {
namespace {

constexpr unsigned long long kNotRegistered = D3D9ResourceManagerImpl::kNotRegistered;

}  // namespace

D3D9ResourceBase::D3D9ResourceBase()
    : m_nRegisterId(kNotRegistered),
      m_pUser(nullptr),
      m_pLostCallback(nullptr),
      m_pRecoverLostCallback(nullptr) {}

D3D9ResourceBase::D3D9ResourceBase(const D3D9ResourceBase& other) : D3D9ResourceBase() {
    D3D9ResourceBase::operator=(other);
}

D3D9ResourceBase& D3D9ResourceBase::operator=(const D3D9ResourceBase& other) {
    SetUserCallback(other.m_pUser, other.m_pLostCallback, other.m_pRecoverLostCallback);
    if (other.m_nRegisterId != kNotRegistered) {
        Register();
    }
    return *this;
}

D3D9ResourceBase::~D3D9ResourceBase() {
    D3D9ResourceManagerImpl* const manager = D3D9ResourceManagerImpl::s_pCurrent;
    if (m_nRegisterId != kNotRegistered && manager != nullptr) {
        manager->Remove(m_nRegisterId, this);
    }
}

void D3D9ResourceBase::SetUserCallback(void* user, LostCallback lost, RecoverLostCallback recoverLost) {
    m_pUser = user;
    m_pLostCallback = lost;
    m_pRecoverLostCallback = recoverLost;
}

void D3D9ResourceBase::UnsetUserCallback() {
    SetUserCallback(nullptr, nullptr, nullptr);
}

void D3D9ResourceBase::OnLost() {
    CallUsersLost();
    OnLostImpl();
}

void D3D9ResourceBase::OnRecoverLost(IDirect3DDevice9* device,
                                     const D3DPRESENT_PARAMETERS& presentParameters) {
    OnRecoverLostImpl(device, presentParameters);
    CallUsersRecoverLost(device, presentParameters);
}

void D3D9ResourceBase::Register() {
    D3D9ResourceManagerImpl* const manager = D3D9ResourceManagerImpl::s_pCurrent;
    if (m_nRegisterId == kNotRegistered && manager != nullptr) {
        m_nRegisterId = manager->Add(this);
    }
}

void D3D9ResourceBase::CallUsersLost() {
    if (m_pLostCallback != nullptr) {
        m_pLostCallback(this, m_pUser);
    }
}

void D3D9ResourceBase::CallUsersRecoverLost(IDirect3DDevice9* device,
                                            const D3DPRESENT_PARAMETERS& presentParameters) {
    if (m_pRecoverLostCallback != nullptr) {
        m_pRecoverLostCallback(this, m_pUser, device, presentParameters);
    }
}

}  // namespace velm
