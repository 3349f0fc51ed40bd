#include "graphics/D3d9AdapterChecker.h"

#include <iterator>

namespace velm {
namespace {

/// Whether the fact, which has the item's type, satisfies the item.
bool Satisfies(const D3d9AdapterFact& fact, D3d9AdapterCheckItem& item) {
    switch (item.GetType()) {
        case D3D9_ADAPTER_PARAM_STRING:
            return item.CheckAsString(fact.text);
        case D3D9_ADAPTER_PARAM_DWORD:
            return item.CheckAsDWORD(static_cast<DWORD>(fact.number));
        case D3D9_ADAPTER_PARAM_UINT:
            return item.CheckAsUINT(static_cast<unsigned int>(fact.number));
        case D3D9_ADAPTER_PARAM_INT64:
            return item.CheckAsInt64(fact.number);
        case D3D9_ADAPTER_PARAM_GUID:
            return item.CheckAsGUID(fact.guid);
        default:
            return false;
    }
}

}  // namespace

const D3d9AdapterCommand* FindAdapterCommand(D3d9AdapterCheckCommand command) {
    const auto index = static_cast<unsigned int>(command);  // negative commands become out of range
    return index < std::size(kD3d9AdapterCommands) ? &kD3d9AdapterCommands[index] : nullptr;
}

ErrorCode CheckAdapter(bool* passed, const D3d9AdapterContext& context,
                       const std::tr1::shared_ptr<D3d9AdapterCheckItem>& item) {
    if (item == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    const D3d9AdapterCommand* const entry = FindAdapterCommand(item->GetCommand());
    if (entry == nullptr) {
        return VELM_ERROR_UTIL_NOT_EXIST;
    }
    if (!item->CheckType(entry->type)) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    *passed = Satisfies(entry->read(context), *item);
    return 0;
}

}  // namespace velm
