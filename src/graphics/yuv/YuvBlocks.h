/// @file
/// The loop that the vector kernels share, and why their arithmetic is exact.
///
/// The kernels work in lanes of 16 bits. For Y, U and V from 0 to 255 and either matrix, these ranges hold:
///
///     luma term    74 Y                                        0 .. 18870
///     chroma term  of red, luma's offset of 1184 taken off     -15904 .. 13421
///                  of green, likewise                          -10963 .. 8672
///                  of blue, likewise                           -18464 .. 15961
///     sum          of red                                      -15904 .. 32291
///                  of green                                    -10963 .. 27542
///                  of blue                                     -18464 .. 34831
///
/// A chroma term serves four pixels, so luma's offset is there; its products fit too once U and V are
/// centred. Only the sum of blue can leave 16 bits, and only upwards. A saturating add makes 32767 of it;
/// that and the true sum are both above 255 once they are shifted by 6, so both are clamped to 255. Packing
/// with unsigned saturation clamps.
///
/// Where red is not packed, it is clamped before the shift, to 0 .. 16383: with kClampBias added to its
/// chroma term (33248 .. 62573, unsigned) a saturating add of luma stops at 65535 = 16383 + kClampBias, and a
/// saturating subtraction of kClampBias stops at 0.
#pragma once

#include <cstddef>
#include <cstring>

#include "YuvRows.h"

namespace velm::yuv {

constexpr int kLargestSum = (256 << kFractionBits) - 1;
constexpr int kClampBias = 65535 - kLargestSum;

/// The factor whose product's upper 16 bits are a number shifted right by kFractionBits.
constexpr int kShiftFactor = 1 << (16 - kFractionBits);

/// Two neighbouring bytes, or factors for them, as one number of 16 bits.
[[maybe_unused]] static constexpr short BytePair(int first, int second) {
    return static_cast<short>(second * 256 + first);
}

/// Converts one or two rows in blocks of Block::kPixels pixels; what is left of a row is converted in a block
/// of its own memory, so that nothing beyond the row is touched.
///
/// A Block is made from a matrix and has two operations: LoadChroma(u, v) takes kPixels / 2 bytes of each and
/// returns the chroma terms of a block; StoreRow<kStream>(chroma, y, argb) adds kPixels of luma and writes
/// the pixels, past the caches when kStream is set.
template <class Block>
class BlockLoop {
public:
    static void Convert(const Matrix& matrix, const Rows& rows) {
        const Block block(matrix);
        if (rows.count == 1) {
            ConvertRows<1, false>(block, rows);
        } else if (rows.stream) {
            ConvertRows<2, true>(block, rows);
        } else {
            ConvertRows<2, false>(block, rows);
        }
    }

private:
    static constexpr std::size_t kPixels = Block::kPixels;

    // The rows come as a copy, which no store through a pointer can change.
    template <int kCount, bool kStream>
    static void ConvertRows(const Block& block, Rows rows) {
        std::size_t x = 0;
        for (; rows.width - x >= kPixels; x += kPixels) {
            const auto chroma = block.LoadChroma(rows.u + x / 2, rows.v + x / 2);
            block.template StoreRow<kStream>(chroma, rows.y[0] + x, rows.argb[0] + 4 * x);
            if constexpr (kCount == 2) {
                block.template StoreRow<kStream>(chroma, rows.y[1] + x, rows.argb[1] + 4 * x);
            }
        }
        if (x < rows.width) {
            ConvertRest(block, rows, x);
        }
    }

    static void ConvertRest(const Block& block, Rows rows, std::size_t x) {
        const std::size_t width = rows.width - x;
        unsigned char u[kPixels / 2] = {};
        unsigned char v[kPixels / 2] = {};
        std::memcpy(u, rows.u + x / 2, (width + 1) / 2);
        std::memcpy(v, rows.v + x / 2, (width + 1) / 2);
        const auto chroma = block.LoadChroma(u, v);
        for (int row = 0; row < rows.count; ++row) {
            unsigned char y[kPixels] = {};
            unsigned char argb[4 * kPixels];
            std::memcpy(y, rows.y[row] + x, width);
            block.template StoreRow<false>(chroma, y, argb);
            std::memcpy(rows.argb[row] + 4 * x, argb, 4 * width);
        }
    }
};

}  // namespace velm::yuv
