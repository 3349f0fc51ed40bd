/// @file
/// The kernels of the picture conversion, and how one is chosen.
///
/// They form a static library, velm_yuv, of which VelmUtil links a copy without exporting it. Tests,
/// benchmarks and tools that compare kernels link velm_yuv themselves, so the library's exported table needs
/// no way to force one.
#pragma once

#include <span>
#include <string_view>

#include "CpuFeatures.h"
#include "YuvRows.h"

namespace velm::yuv {

/// The arguments of the exported conversions.
struct Picture {
    const unsigned char* yPlane;
    const unsigned char* uPlane;
    const unsigned char* vPlane;
    unsigned int yStride;
    unsigned int uvStride;
    int width;
    int height;
    void* argb;
    unsigned int argbStride;
};

struct Kernel {
    const char* name;
    CpuLevel needs;
    void (*convertRows)(const Matrix& matrix, const Rows& rows);
};

/// Every kernel, the best first; the scalar one, last, runs anywhere.
std::span<const Kernel> GetKernels();

/// The first kernel that this processor can run.
const Kernel& BestKernel();

/// The kernel of that name; null when there is none or this processor cannot run it.
const Kernel* FindKernel(std::string_view name);

/// Converts a picture, row by row or in pairs of rows that share their chroma.
void Convert(const Kernel& kernel, const Matrix& matrix, const Picture& picture);

}  // namespace velm::yuv
