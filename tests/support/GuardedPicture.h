#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "graphics/yuv/YuvKernels.h"
#include "GuardedRows.h"

namespace velm::test {

/// The kernels that this processor can run.
inline std::vector<yuv::Kernel> RunnableKernels() {
    std::vector<yuv::Kernel> kernels;
    std::ranges::copy_if(yuv::GetKernels(), std::back_inserter(kernels),
                         [](const yuv::Kernel& kernel) { return yuv::FindKernel(kernel.name) != nullptr; });
    return kernels;
}

/// The conversion formula, with the coefficients of the two standards.
inline std::uint32_t PixelOf(const yuv::Matrix& matrix, int luma, int cb, int cr) {
    const auto clamp = [](int value) { return std::clamp(value >> 6, 0, 255); };
    const int y = 74 * (luma - 16);
    const int u = cb - 128;
    const int v = cr - 128;
    const bool is601 = &matrix == &yuv::kBt601;
    const int red = clamp(y + (is601 ? 102 : 115) * v);
    const int green = clamp(y - (is601 ? 25 : 14) * u - (is601 ? 52 : 34) * v);
    const int blue = clamp(y + (is601 ? 129 : 135) * u);
    return static_cast<std::uint32_t>(red << 16 | green << 8 | blue);
}

/// How a picture lies in memory. Rows of the input planes may overlap.
struct PictureLayout {
    std::size_t width, height;
    std::size_t yStride, uvStride;
    std::size_t argbStride;  // a multiple of 4, at least the bytes of a row
    Guard guard;
    std::size_t odd = 0;  // added to the address and the stride of the output, both multiples of 4
};

/// A picture with each plane and the output in guarded memory of its own.
class GuardedPicture {
public:
    /// @param next  called for each byte of the planes
    template <typename Next>
    GuardedPicture(const PictureLayout& at, Next next)
        : m_at(at),
          m_y(at.height, at.width, at.yStride, at.guard),
          m_u((at.height + 1) / 2, (at.width + 1) / 2, at.uvStride, at.guard),
          m_v((at.height + 1) / 2, (at.width + 1) / 2, at.uvStride, at.guard),
          m_argb(at.height, 4 * at.width + at.odd, at.argbStride, at.guard) {
        const auto byte = [&next] { return static_cast<unsigned char>(next()); };
        for (std::size_t row = 0; row < at.height; ++row) {
            std::generate_n(m_y.Row(row), at.width, byte);
        }
        for (std::size_t row = 0; row < (at.height + 1) / 2; ++row) {
            std::generate_n(m_u.Row(row), (at.width + 1) / 2, byte);
            std::generate_n(m_v.Row(row), (at.width + 1) / 2, byte);
        }
    }

    /// Converts the picture.
    /// @return the first row that differs from the formula or was written past its end, with the layout;
    ///         empty if there is none
    std::string FirstWrongRow(const yuv::Kernel& kernel, const yuv::Matrix& matrix) {
        const auto [width, height, yStride, uvStride, argbStride, guard, odd] = m_at;
        for (std::size_t row = 0; row < height; ++row) {
            std::fill_n(m_argb.Row(row) + odd, 4 * width, static_cast<unsigned char>(0xEE));
        }
        yuv::Convert(kernel, matrix,
                     {m_y.Row(0), m_u.Row(0), m_v.Row(0), static_cast<unsigned int>(yStride),
                      static_cast<unsigned int>(uvStride), static_cast<int>(width), static_cast<int>(height),
                      m_argb.Row(0) + odd, static_cast<unsigned int>(argbStride + odd)});
        for (std::size_t row = 0; width != 0 && row < height; ++row) {
            if (!IsRight(row, matrix)) {
                return std::string(kernel.name) + ", BT." + matrix.name + ", row " + std::to_string(row) +
                       " of " + std::to_string(width) + " x " + std::to_string(height) + ", strides " +
                       std::to_string(yStride) + ", " + std::to_string(uvStride) + ", " +
                       std::to_string(argbStride + odd);
            }
        }
        return "";
    }

private:
    bool IsRight(std::size_t row, const yuv::Matrix& matrix) const {
        const unsigned char* const begin = m_argb.Row(row) + m_at.odd;
        const unsigned char* const end = begin + 4 * m_at.width;
        std::vector<std::uint32_t> expected(m_at.width);
        for (std::size_t x = 0; x < m_at.width; ++x) {
            expected[x] = PixelOf(matrix, m_y.Row(row)[x], m_u.Row(row / 2)[x / 2], m_v.Row(row / 2)[x / 2]);
        }
        // Gaps of more than a page are not mapped.
        const std::size_t gap = m_at.argbStride - 4 * m_at.width;
        const bool hasGap = row + 1 < m_at.height && gap < kPageSize;
        return std::memcmp(begin, expected.data(), 4 * m_at.width) == 0 &&
               std::all_of(end, hasGap ? end + gap : end, [](unsigned char byte) { return byte == 0; });
    }

    PictureLayout m_at;
    GuardedRows m_y, m_u, m_v, m_argb;
};

}  // namespace velm::test
