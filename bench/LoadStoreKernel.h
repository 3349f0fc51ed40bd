#pragma once

#include "graphics/yuv/YuvPicture.h"

namespace velm::bench {

/// Moves the bytes that a conversion moves and computes nothing: the limit that memory sets. Needs AVX-512F.
void LoadAndStore(const yuv::Matrix& matrix, const yuv::Picture& picture, yuv::Writing writing);

}  // namespace velm::bench
