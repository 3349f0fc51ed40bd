#include "velm/D3d9AdapterCheckSet.h"

#include <new>

#include "graphics/D3d9AdapterChecker.h"

namespace velm {

D3d9AdapterCheckSet::D3d9AdapterCheckSet() : m_pNotifyError(nullptr), m_pNotifyUser(nullptr) {}

D3d9AdapterCheckSet::D3d9AdapterCheckSet(const D3d9AdapterCheckSet& other) = default;
D3d9AdapterCheckSet& D3d9AdapterCheckSet::operator=(const D3d9AdapterCheckSet& other) = default;
D3d9AdapterCheckSet::~D3d9AdapterCheckSet() = default;

void D3d9AdapterCheckSet::AddItem(std::tr1::shared_ptr<D3d9AdapterCheckItem> item) {
    m_items.push_back(item);
}

void D3d9AdapterCheckSet::BindNotifyError(NotifyErrorFunc callback, void* user) {
    m_pNotifyError = callback;
    m_pNotifyUser = user;
}

ErrorCode D3d9AdapterCheckSet::Check(bool* passed, IDirect3D9* d3d, UINT adapter) {
    if (passed == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    *passed = false;
    if (d3d == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    const std::unique_ptr<D3d9AdapterContext> context(new (std::nothrow) D3d9AdapterContext);
    if (context == nullptr) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
    context->Setup(d3d, adapter);  // facts that cannot be read stay zero, and are checked as such
    const ErrorCode result = Check(passed, context.get());
    return result.IsFailed() ? result : 0;
}

ErrorCode D3d9AdapterCheckSet::Check(bool* passed, D3d9AdapterContext* context) {
    if (passed == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    *passed = false;
    if (context == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    for (const auto& item : m_items) {
        bool ok = false;
        const ErrorCode result = CheckCommand(&ok, context, item);
        if (result.IsFailed() || !ok) {
            if (m_pNotifyError != nullptr) {
                m_pNotifyError(m_pNotifyUser, context, item);
            }
            return result;
        }
    }
    *passed = true;
    return 0;
}

ErrorCode D3d9AdapterCheckSet::CheckCommand(bool* passed, D3d9AdapterContext* context,
                                            std::tr1::shared_ptr<D3d9AdapterCheckItem> item) {
    return CheckAdapter(passed, *context, item);
}

ErrorCode D3d9AdapterCheckSet::GetCommandType(D3d9AdapterParamType* type, D3d9AdapterCheckCommand command) {
    const D3d9AdapterCommand* const entry = FindAdapterCommand(command);
    if (type == nullptr || entry == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    *type = entry->type;
    return 0;
}

}  // namespace velm
