/// @file
/// The kernels of the picture conversion, and how one is chosen.
///
/// They form a static library, velm_yuv, of which VelmUtil links a copy without exporting it. Tests,
/// benchmarks and tools that compare kernels link velm_yuv themselves, so the library's exported table needs
/// no way to force one.
#pragma once

#include <span>
#include <string_view>

#include "graphics/yuv/CpuFeatures.h"
#include "graphics/yuv/YuvPicture.h"

namespace velm::yuv {

struct Kernel {
    const char* name;
    CpuLevel needs;
    void (*convert)(const Matrix& matrix, const Picture& picture, Writing writing);
};

/// Every kernel, the best first; the scalar one, last, runs anywhere.
std::span<const Kernel> GetKernels();

/// The first kernel that this processor can run.
const Kernel& BestKernel();

/// The kernel of that name; null when there is none or this processor cannot run it.
const Kernel* FindKernel(std::string_view name);

/// Converts a picture as the exported functions do.
void Convert(const Kernel& kernel, const Matrix& matrix, const Picture& picture);

}  // namespace velm::yuv
