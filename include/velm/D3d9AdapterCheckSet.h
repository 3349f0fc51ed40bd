#pragma once

#include <utility>
#include <vector>

#include "velm/D3d9AdapterCheckItem.h"
#include "velm/D3d9AdapterContext.h"
#include "velm/Tr1SharedPtr.h"

namespace velm {

/// Called with the rule that an adapter failed.
/// @param user  as passed to BindNotifyError
/// @param context  the facts; valid only during the call
/// @param item  the rule
typedef void (*NotifyErrorFunc)(void* user, D3d9AdapterContext* context,
                                Tr1SharedPtr<D3d9AdapterCheckItem> item);

/// An ordered list of rules that an adapter must all satisfy; an empty set accepts every adapter. A copy
/// shares the items. Copying and AddItem throw std::bad_alloc when out of memory and then change nothing.
///
/// Threads: any number may check with a set, or with sets that share items, as long as none changes them.
class VELM_UTIL_API D3d9AdapterCheckSet {
public:
    D3d9AdapterCheckSet();
    /// @{
    /// Copies the list and the callback; shares the items.
    D3d9AdapterCheckSet(const D3d9AdapterCheckSet& other);
    D3d9AdapterCheckSet& operator=(const D3d9AdapterCheckSet& other);
    /// @}
    virtual ~D3d9AdapterCheckSet();

    /// Appends a rule and shares its ownership. Duplicates are kept. A null item is kept too and makes Check
    /// return VELM_ERROR_UTIL_INVALID_PARAM.
    void AddItem(Tr1SharedPtr<D3d9AdapterCheckItem> item);

#if !VELM_TR1_SHARED_PTR_IS_STD
    /// The same for a std::shared_ptr, which the set keeps as long as the rule.
    void AddItem(std::shared_ptr<D3d9AdapterCheckItem> item) {
        struct Holder {
            std::shared_ptr<D3d9AdapterCheckItem> item;
            void operator()(D3d9AdapterCheckItem*) { item.reset(); }
        };
        D3d9AdapterCheckItem* const rule = item.get();
        AddItem(Tr1SharedPtr<D3d9AdapterCheckItem>(rule, Holder{std::move(item)}));
    }
#endif

    /// Sets the callback that Check calls, at most once and before it returns, with a rule that failed or
    /// could not be checked.
    /// @param callback  replaces the previous one; null for none
    /// @param user  passed to the callback; owned by the caller
    void BindNotifyError(NotifyErrorFunc callback, void* user);

    /// Reads an adapter's facts and checks them. A fact that cannot be read counts as zero.
    /// @param passed  out: whether every rule is satisfied; false on failure
    /// @param d3d  owned by the caller
    /// @param adapter  ordinal, 0 for the primary adapter
    /// @return as the other Check; VELM_ERROR_UTIL_INVALID_PARAM also for a null `d3d`;
    ///         VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    ErrorCode Check(bool* passed, IDirect3D9* d3d, UINT adapter);

    /// Checks the rules in the order they were added and stops at the first one that is not satisfied.
    /// @param passed  out: whether every rule is satisfied; false on failure
    /// @param context  the facts; owned by the caller
    /// @return 0 when the rules could be checked, satisfied or not; VELM_ERROR_UTIL_NOT_EXIST for a rule with
    ///         an unknown command; VELM_ERROR_UTIL_INVALID_PARAM for a rule whose operand does not have its
    ///         command's type, for a null rule, and for null arguments
    ErrorCode Check(bool* passed, D3d9AdapterContext* context);

    /// Gets the operand type that a rule with `command` must have.
    /// @param type  out: the type; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for an unknown command or a null `type`
    /// Threads: any.
    static ErrorCode GetCommandType(D3d9AdapterParamType* type, D3d9AdapterCheckCommand command);

private:
    ErrorCode CheckCommand(bool* passed, D3d9AdapterContext* context,
                           Tr1SharedPtr<D3d9AdapterCheckItem> item);

    std::vector<Tr1SharedPtr<D3d9AdapterCheckItem>> m_items;
    NotifyErrorFunc m_pNotifyError;
    void* m_pNotifyUser;
};

}  // namespace velm
