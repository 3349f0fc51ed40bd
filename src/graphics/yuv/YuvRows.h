/// @file
/// What passes between the picture conversion and its kernels. The kernels are compiled for processors that
/// need not be there, so this header and YuvBlocks.h hold nothing that a linker could take from one of them
/// for the rest of the library: no inline functions, no templates over types that others share, no standard
/// containers.
#pragma once

#include <cstddef>

namespace velm::yuv {

/// The coefficients of a colour matrix, scaled by 64.
struct Matrix {
    const char* name;
    short luma;
    short vToRed;
    short uToGreen;
    short vToGreen;
    short uToBlue;
};

constexpr Matrix kBt601 = {"601", 74, 102, 25, 52, 129};
constexpr Matrix kBt709 = {"709", 74, 115, 14, 34, 135};

/// What is taken from Y, and from U and V.
constexpr int kLumaOffset = 16;
constexpr int kChromaOffset = 128;

/// Binary places of the coefficients.
constexpr int kFractionBits = 6;

/// One row of a picture, or the two that share a chroma row.
struct Rows {
    int count;                  // 1 or 2; with 1 the second addresses are not used
    bool stream;                // write past the caches; only when the output rows begin at multiples of 64
    std::size_t width;          // in pixels
    const unsigned char* y[2];  // width bytes each
    const unsigned char* u;     // (width + 1) / 2 bytes each
    const unsigned char* v;
    unsigned char* argb[2];  // 4 * width bytes each
};

void ConvertAvx2(const Matrix& matrix, const Rows& rows);
void ConvertAvx512Bw(const Matrix& matrix, const Rows& rows);
void ConvertAvx512Vbmi(const Matrix& matrix, const Rows& rows);
void ConvertScalar(const Matrix& matrix, const Rows& rows);
void ConvertSse2(const Matrix& matrix, const Rows& rows);

}  // namespace velm::yuv
