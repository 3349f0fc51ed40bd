/// @file
/// The loop that the vector kernels share. Each instantiates it over a type that no other file sees.
#pragma once

#include <cstddef>
#include <cstring>

#include "YuvRows.h"

namespace velm::yuv {

/// Converts one or two rows in blocks of Block::kPixels pixels; what is left of a row is converted in a block
/// of its own memory, so that nothing beyond the row is touched.
///
/// A Block is made from a matrix and has two operations: LoadChroma(u, v) takes kPixels / 2 bytes of each and
/// returns the chroma terms of a block; StoreRow(chroma, y, argb) adds kPixels of luma and writes the pixels.
template <class Block>
class BlockLoop {
public:
    static void Convert(const Matrix& matrix, const Rows& rows) {
        const Block block(matrix);
        if (rows.count == 2) {
            ConvertRows<2>(block, rows);
        } else {
            ConvertRows<1>(block, rows);
        }
    }

private:
    static constexpr std::size_t kPixels = Block::kPixels;

    template <int kCount>
    static void ConvertRows(const Block& block, const Rows& rows) {
        std::size_t x = 0;
        for (; x + kPixels <= rows.width; x += kPixels) {
            const auto chroma = block.LoadChroma(rows.u + x / 2, rows.v + x / 2);
            block.StoreRow(chroma, rows.y[0] + x, rows.argb[0] + 4 * x);
            if constexpr (kCount == 2) {
                block.StoreRow(chroma, rows.y[1] + x, rows.argb[1] + 4 * x);
            }
        }
        if (x < rows.width) {
            ConvertRest(block, rows, x);
        }
    }

    static void ConvertRest(const Block& block, const Rows& rows, std::size_t x) {
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
            block.StoreRow(chroma, y, argb);
            std::memcpy(rows.argb[row] + 4 * x, argb, 4 * width);
        }
    }
};

}  // namespace velm::yuv
