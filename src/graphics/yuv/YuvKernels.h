/// @file
/// The kernels of the picture conversion and their selection.
///
/// They form a static library, velm_yuv, which VelmUtil links without exporting it. Tests, benchmarks and
/// tools that compare kernels link velm_yuv themselves, so VelmUtil needs no export to force a kernel.
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

/// Returns all kernels, those with the newest instructions first. The last one, scalar, runs everywhere.
std::span<const Kernel> GetKernels();

/// Returns the fastest kernel for a processor.
const Kernel& ChooseKernel(const CpuReport& report);

/// Returns the fastest kernel for this processor, determined once.
/// Threads: any.
const Kernel& BestKernel();

/// Returns the kernel of that name; null if there is none or this processor cannot run it.
const Kernel* FindKernel(std::string_view name);

/// Converts a picture with the given kernel; otherwise like the exported functions.
void Convert(const Kernel& kernel, const Matrix& matrix, const Picture& picture);

}  // namespace velm::yuv
