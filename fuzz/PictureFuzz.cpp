// Pictures of any geometry through every kernel that this processor can run: each produces the pixels of the
// scalar kernel and touches no byte before, after or between the rows.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "Fuzz.h"
#include "graphics/yuv/YuvKernels.h"
#include "GuardedRows.h"

namespace {

using velm::test::Guard;
using velm::test::GuardedRows;
using velm::yuv::Kernel;
using velm::yuv::Picture;

/// The input byte by byte; zeros after its end.
class Bytes {
public:
    Bytes(const std::uint8_t* data, std::size_t size) : m_data(data), m_end(data + size) {}
    std::size_t Take() { return m_data != m_end ? *m_data++ : 0; }

private:
    const std::uint8_t* m_data;
    const std::uint8_t* m_end;
};

struct Geometry {
    std::size_t width;
    std::size_t height;
    std::size_t yStride;  // rows of the input planes may overlap
    std::size_t uvStride;
    std::size_t gap;  // bytes between output rows; a multiple of 4
    Guard guard;
};

void Fill(const GuardedRows& rows, std::size_t height, std::size_t width, Bytes& bytes) {
    for (std::size_t row = 0; row < height; ++row) {
        std::generate_n(rows.Row(row), width, [&] { return static_cast<unsigned char>(bytes.Take()); });
    }
}

std::vector<unsigned char> Convert(const Kernel& kernel, const Geometry& geometry, Bytes bytes) {
    const auto [width, height, yStride, uvStride, gap, guard] = geometry;
    const std::size_t chromaWidth = (width + 1) / 2;
    const std::size_t chromaHeight = (height + 1) / 2;
    const GuardedRows y(height, width, yStride, guard);
    const GuardedRows u(chromaHeight, chromaWidth, uvStride, guard);
    const GuardedRows v(chromaHeight, chromaWidth, uvStride, guard);
    const GuardedRows argb(height, 4 * width, 4 * width + gap, guard);
    Fill(y, height, width, bytes);
    Fill(u, chromaHeight, chromaWidth, bytes);
    Fill(v, chromaHeight, chromaWidth, bytes);
    velm::yuv::Convert(kernel, velm::yuv::kBt709,
                       {y.Row(0), u.Row(0), v.Row(0), static_cast<unsigned int>(yStride),
                        static_cast<unsigned int>(uvStride), static_cast<int>(width),
                        static_cast<int>(height), argb.Row(0), static_cast<unsigned int>(argb.Stride())});
    if (width == 0 || height == 0) {
        return {};
    }
    return {argb.Row(0), argb.Row(height - 1) + 4 * width};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Bytes bytes(data, size);
    const Geometry geometry = {.width = bytes.Take(),
                               .height = bytes.Take() % 8,
                               .yStride = 2 * bytes.Take(),
                               .uvStride = bytes.Take(),
                               .gap = bytes.Take() / 4 * 4,
                               .guard = bytes.Take() % 2 != 0 ? Guard::kBefore : Guard::kAfter};
    const auto kernels = velm::yuv::GetKernels();
    const std::vector<unsigned char> expected = Convert(kernels.back(), geometry, bytes);
    for (std::size_t row = 1; row * (4 * geometry.width + geometry.gap) < expected.size(); ++row) {
        const auto nextRow =
            expected.begin() + static_cast<std::ptrdiff_t>(row * (4 * geometry.width + geometry.gap));
        VELM_FUZZ_DEMAND(std::count(nextRow - static_cast<std::ptrdiff_t>(geometry.gap), nextRow, 0) ==
                         static_cast<std::ptrdiff_t>(geometry.gap));
    }
    for (const Kernel& kernel : kernels) {
        if (velm::yuv::FindKernel(kernel.name) != nullptr) {
            VELM_FUZZ_DEMAND(Convert(kernel, geometry, bytes) == expected);
        }
    }
    return 0;
}
