/// @file
/// The loop of the vector kernels, and the proof that their arithmetic is exact.
///
/// The kernels compute in 16 bits. For Y, U and V from 0 to 255 and either matrix, these ranges hold:
///
///     luma term    74 Y                                        0 .. 18870
///     chroma term  of red, minus luma's offset of 1184         -15904 .. 13421
///                  of green, likewise                          -10963 .. 8672
///                  of blue, likewise                           -18464 .. 15961
///     sum          of red                                      -15904 .. 32291
///                  of green                                    -10963 .. 27542
///                  of blue                                     -18464 .. 34831
///
/// Luma's offset is part of the chroma terms, which four pixels share, so it is subtracted only once for
/// them. The products fit in 16 bits too once U and V are centred. Only the sum of blue can overflow, and
/// only upwards. A saturating add then gives 32767; shifted right by 6, both that and the true sum exceed
/// 255. Packing with unsigned saturation clamps both to 255.
///
/// Some kernels do not pack red; they clamp it before the shift, to 0 .. 16383. They add kClampBias to its
/// chroma term (which gives 33248 .. 62573, unsigned), so that an unsigned saturating add of luma stops at
/// 65535 = 16383 + kClampBias, and a saturating subtraction of kClampBias then stops at 0.
#pragma once

#include <cstddef>
#include <cstring>

#include "graphics/yuv/YuvPicture.h"

namespace velm::yuv {

constexpr int kLargestSum = (256 << kFractionBits) - 1;
constexpr int kClampBias = 65535 - kLargestSum;

/// Multiplying by this and taking the upper 16 bits shifts right by kFractionBits.
constexpr int kShiftFactor = 1 << (16 - kFractionBits);

/// Two adjacent bytes, or the factors for two bytes, as one 16-bit number.
[[maybe_unused]] static constexpr short BytePair(int first, int second) {
    return static_cast<short>(second * 256 + first);
}

/// Converts a picture in blocks of Block::kPixels pixels, two rows at a time because they share their chroma.
/// The rest of a row is converted in a temporary buffer, so that nothing beyond the row is accessed.
///
/// A Block is constructed from a matrix and has two operations: LoadChroma(u, v) reads kPixels / 2 bytes of
/// each plane and returns the block's chroma terms; StoreRow<kStream>(chroma, y, argb) adds kPixels bytes of
/// luma and writes the pixels, with non-temporal stores when kStream is set.
template <class Block>
class BlockLoop {
public:
    static void Convert(const Matrix& matrix, const Picture& picture, Writing writing) {
        const Block block(matrix);
        if (writing == Writing::kPastCaches) {
            ConvertPicture<true>(block, picture);
        } else {
            ConvertPicture<false>(block, picture);
        }
    }

private:
    static constexpr std::size_t kPixels = Block::kPixels;

    struct Rows {
        const unsigned char* y[2];
        const unsigned char* u;
        const unsigned char* v;
        unsigned char* argb[2];
    };

    template <bool kStream>
    static void ConvertPicture(const Block& block, const Picture& picture) {
        const auto width = static_cast<std::size_t>(picture.width);
        const auto height = static_cast<std::size_t>(picture.height);
        const std::size_t yStride = picture.yStride;
        const std::size_t argbStride = picture.argbStride;
        for (std::size_t row = 0; row < height; row += 2) {
            const unsigned char* const y = picture.yPlane + row * yStride;
            unsigned char* const argb = static_cast<unsigned char*>(picture.argb) + row * argbStride;
            const unsigned char* const u = picture.uPlane + row / 2 * picture.uvStride;
            const unsigned char* const v = picture.vPlane + row / 2 * picture.uvStride;
            if (row + 1 < height) {
                ConvertRows<2, kStream>(block, {{y, y + yStride}, u, v, {argb, argb + argbStride}}, width);
            } else {
                ConvertRows<1, kStream>(block, {{y, nullptr}, u, v, {argb, nullptr}}, width);
            }
        }
    }

    // Rows is passed by value, so the compiler knows that no store through a pointer changes it.
    template <int kCount, bool kStream>
    static void ConvertRows(const Block& block, Rows rows, std::size_t width) {
        std::size_t x = 0;
        for (; width - x >= kPixels; x += kPixels) {
            const auto chroma = block.LoadChroma(rows.u + x / 2, rows.v + x / 2);
            block.template StoreRow<kStream>(chroma, rows.y[0] + x, rows.argb[0] + 4 * x);
            if constexpr (kCount == 2) {
                block.template StoreRow<kStream>(chroma, rows.y[1] + x, rows.argb[1] + 4 * x);
            }
        }
        if (x < width) {
            ConvertRest<kCount>(block, rows, x, width - x);
        }
    }

    template <int kCount>
    static void ConvertRest(const Block& block, Rows rows, std::size_t x, std::size_t width) {
        unsigned char u[kPixels / 2] = {};
        unsigned char v[kPixels / 2] = {};
        std::memcpy(u, rows.u + x / 2, (width + 1) / 2);
        std::memcpy(v, rows.v + x / 2, (width + 1) / 2);
        const auto chroma = block.LoadChroma(u, v);
        for (int row = 0; row < kCount; ++row) {
            unsigned char y[kPixels] = {};
            unsigned char argb[4 * kPixels];
            std::memcpy(y, rows.y[row] + x, width);
            block.template StoreRow<false>(chroma, y, argb);
            std::memcpy(rows.argb[row] + 4 * x, argb, 4 * width);
        }
    }
};

}  // namespace velm::yuv
