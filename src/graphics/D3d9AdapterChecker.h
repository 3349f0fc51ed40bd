#pragma once

#include <iterator>

#include "D3d9AdapterCommand.h"
#include "velm/Tr1SharedPtr.h"

namespace velm {

/// Evaluates single rules by the table of commands. There is one checker in the process.
class D3d9AdapterChecker {
public:
    /// The checker, made by the first call; threads whose first calls race get the same one.
    static const D3d9AdapterChecker& GetInstance();

    virtual ~D3d9AdapterChecker();

    /// @return the command's entry; null for an unknown command
    const D3d9AdapterCommand* Find(D3d9AdapterCheckCommand command) const;

    /// @param passed  receives whether the fact satisfies the item; unchanged on failure
    /// @return 0; VELM_ERROR_UTIL_NOT_EXIST for an unknown command; VELM_ERROR_UTIL_INVALID_PARAM for an item
    ///         that is not of its command's type, and for an empty one
    ErrorCode Check(bool* passed, const D3d9AdapterContext& context,
                    const std::tr1::shared_ptr<D3d9AdapterCheckItem>& item) const;

private:
    D3d9AdapterChecker();

    // By the command's value.
    const D3d9AdapterCommand* m_commandTable[std::size(kD3d9AdapterCommands)];
};

}  // namespace velm
