#pragma once

#include "graphics/D3d9AdapterCommand.h"
#include "velm/Tr1SharedPtr.h"

namespace velm {

/// @return the command's entry in the table; null for an unknown command
const D3d9AdapterCommand* FindAdapterCommand(D3d9AdapterCheckCommand command);

/// Evaluates one rule.
/// @param passed  out: whether the fact satisfies the item; unchanged on failure
/// @return 0; VELM_ERROR_UTIL_NOT_EXIST for an unknown command; VELM_ERROR_UTIL_INVALID_PARAM for an item
///         without its command's type, and for null
ErrorCode CheckAdapter(bool* passed, const D3d9AdapterContext& context,
                       const std::tr1::shared_ptr<D3d9AdapterCheckItem>& item);

}  // namespace velm
