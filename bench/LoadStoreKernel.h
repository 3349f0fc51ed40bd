#pragma once

#include "graphics/yuv/YuvPicture.h"

namespace velm::bench {

/// Loads and stores the bytes that a conversion does and computes nothing: the limit set by memory. Needs
/// AVX-512F.
void LoadAndStore(const yuv::Matrix& matrix, const yuv::Picture& picture, yuv::Writing writing);

}  // namespace velm::bench
