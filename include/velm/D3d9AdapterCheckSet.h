#pragma once

#include <utility>
#include <vector>

#include "velm/D3d9AdapterCheckItem.h"
#include "velm/D3d9AdapterContext.h"
#include "velm/Tr1SharedPtr.h"

namespace velm {

/// Learns which rule an adapter failed.
/// @param user  as given to BindNotifyError
/// @param context  the facts, valid during the call
/// @param item  the rule
typedef void (*NotifyErrorFunc)(void* user, D3d9AdapterContext* context,
                                Tr1SharedPtr<D3d9AdapterCheckItem> item);

/// An ordered list of rules that an adapter must satisfy, all of them. An empty set accepts every adapter. A
/// copy shares the items. Copying and AddItem throw std::bad_alloc when memory runs out; the set is then as
/// it was.
///
/// Threads: any number may check with a set, and with sets that share items, while none changes them.
class VELM_UTIL_API D3d9AdapterCheckSet {
public:
    D3d9AdapterCheckSet();
    /// @{
    /// Copies the list and who learns of a failed rule; the items are shared.
    D3d9AdapterCheckSet(const D3d9AdapterCheckSet& other);
    D3d9AdapterCheckSet& operator=(const D3d9AdapterCheckSet& other);
    /// @}
    virtual ~D3d9AdapterCheckSet();

    /// Appends a rule, which the set then shares. Duplicates count. An empty pointer is kept as a rule that
    /// no adapter can be checked against.
    void AddItem(Tr1SharedPtr<D3d9AdapterCheckItem> item);

#if !VELM_TR1_SHARED_PTR_IS_STD
    /// The same for a std::shared_ptr: the set holds it as long as it holds the rule.
    void AddItem(std::shared_ptr<D3d9AdapterCheckItem> item) {
        struct Holder {
            std::shared_ptr<D3d9AdapterCheckItem> item;
            void operator()(D3d9AdapterCheckItem*) { item.reset(); }
        };
        D3d9AdapterCheckItem* const rule = item.get();
        AddItem(Tr1SharedPtr<D3d9AdapterCheckItem>(rule, Holder{std::move(item)}));
    }
#endif

    /// Sets who learns of a failed rule, at most once in each check and before it returns.
    /// @param callback  replaces the earlier one; null for none
    /// @param user  handed back to the callback
    void BindNotifyError(NotifyErrorFunc callback, void* user);

    /// Reads an adapter's facts and checks them. A fact that cannot be read counts as zero.
    /// @param passed  receives whether every rule is satisfied; false whenever a failure is returned
    /// @param d3d  the caller's
    /// @param adapter  ordinal, 0 for the primary adapter
    /// @return as the other Check; VELM_ERROR_UTIL_INVALID_PARAM also for a null `d3d`;
    ///         VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY
    ErrorCode Check(bool* passed, IDirect3D9* d3d, UINT adapter);

    /// Checks the rules in the order they were added, up to the first that is not satisfied.
    /// @param passed  receives whether every rule is satisfied; false whenever a failure is returned
    /// @param context  the facts; the caller's
    /// @return 0 when the rules could be checked, satisfied or not; VELM_ERROR_UTIL_NOT_EXIST for a rule with
    ///         an unknown command; VELM_ERROR_UTIL_INVALID_PARAM for a rule whose operand is not of its
    ///         command's type, for an empty rule, and for null arguments
    ErrorCode Check(bool* passed, D3d9AdapterContext* context);

    /// The type that the operand of a rule with `command` must have.
    /// @param type  receives it; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for an unknown command or a null `type`
    /// Threads: any, also when the first calls race.
    static ErrorCode GetCommandType(D3d9AdapterParamType* type, D3d9AdapterCheckCommand command);

private:
    ErrorCode CheckCommand(bool* passed, D3d9AdapterContext* context,
                           Tr1SharedPtr<D3d9AdapterCheckItem> item);

    std::vector<Tr1SharedPtr<D3d9AdapterCheckItem>> m_items;
    NotifyErrorFunc m_pNotifyError;
    void* m_pNotifyUser;
};

}  // namespace velm
