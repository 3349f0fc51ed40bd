#include "graphics/yuv/YuvKernels.h"

#include <emmintrin.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace velm::yuv {
namespace {

constexpr Kernel kKernels[] = {
    {"avx512vbmi", CpuLevel::kAvx512Vbmi, ConvertAvx512Vbmi},
    {"avx512bw", CpuLevel::kAvx512Bw, ConvertAvx512Bw},
    {"avx2", CpuLevel::kAvx2, ConvertAvx2},
    {"sse2", CpuLevel::kBaseline, ConvertSse2},
    {"scalar", CpuLevel::kBaseline, ConvertScalar},
};

/// Output size from which non-temporal stores are faster, because output and planes no longer fit the caches.
/// Measurements put it between 1920 x 1080 (8 MiB) and 3840 x 2160 (32 MiB).
constexpr std::size_t kPastCachesSize = std::size_t{12} << 20;
constexpr std::size_t kPastCachesAlignment = 64;

Writing WritingOf(const Picture& picture) {
    const std::size_t size = static_cast<std::size_t>(picture.height) * picture.argbStride;
    const bool aligned = picture.argbStride % kPastCachesAlignment == 0 &&
                         reinterpret_cast<std::uintptr_t>(picture.argb) % kPastCachesAlignment == 0;
    return size >= kPastCachesSize && aligned ? Writing::kPastCaches : Writing::kThroughCaches;
}

bool CanRun(const Kernel& kernel) {
    return kernel.needs <= GetCpuLevel();
}

}  // namespace

std::span<const Kernel> GetKernels() {
    return kKernels;
}

// The VBMI kernel needs fewer operations than the AVX-512BW kernel, but six of them permute the bytes of two
// registers: one operation each on AMD's processors, three on Intel's, where the AVX-512BW kernel is faster.
// docs/performance.md has the speed of each kernel by processor.
const Kernel& ChooseKernel(const CpuReport& report) {
    const CpuLevel level = LevelOf(report);
    const bool vbmiIsFast = HasFastTwoTablePermutes(report);
    return *std::ranges::find_if(kKernels, [&](const Kernel& kernel) {
        return kernel.needs <= level && (kernel.needs != CpuLevel::kAvx512Vbmi || vbmiIsFast);
    });
}

// Concurrent first calls each choose the same kernel; see GetCpuLevel.
const Kernel& BestKernel() {
    static constinit std::atomic<const Kernel*> known{nullptr};
    const Kernel* kernel = known.load(std::memory_order_relaxed);
    if (kernel == nullptr) {
        kernel = &ChooseKernel(ReadCpuReport());
        known.store(kernel, std::memory_order_relaxed);
    }
    return *kernel;
}

const Kernel* FindKernel(std::string_view name) {
    const auto* const found =
        std::ranges::find_if(kKernels, [name](const Kernel& kernel) { return kernel.name == name; });
    return found != std::end(kKernels) && CanRun(*found) ? found : nullptr;
}

void Convert(const Kernel& kernel, const Matrix& matrix, const Picture& picture) {
    if (picture.width <= 0 || picture.height <= 0 || picture.yPlane == nullptr || picture.uPlane == nullptr ||
        picture.vPlane == nullptr || picture.argb == nullptr) {
        return;
    }
    Picture wholePixels = picture;
    wholePixels.argbStride = picture.argbStride / 4 * 4;
    const Writing writing = WritingOf(wholePixels);
    kernel.convert(matrix, wholePixels, writing);
    if (writing == Writing::kPastCaches) {
        _mm_sfence();  // non-temporal stores are weakly ordered
    }
}

}  // namespace velm::yuv
