#pragma once

#include "YuvRows.h"

namespace velm::bench {

/// Moves the bytes that a conversion of these rows moves and computes nothing: the limit that memory sets.
/// Whole blocks of 64 pixels; needs AVX-512F.
void LoadAndStoreRows(const yuv::Matrix& matrix, const yuv::Rows& rows);

}  // namespace velm::bench
