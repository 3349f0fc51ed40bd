/// @file
/// The interface between the picture conversion and its kernels. The kernels are compiled for instruction
/// sets that the processor may lack. So this header and YuvBlocks.h define nothing that the linker might use
/// in the rest of the library as well: no inline functions with external linkage, no templates over shared
/// types, nothing from the standard library.
#pragma once

namespace velm::yuv {

/// The coefficients of a colour matrix, times 64.
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

/// Subtracted from Y, and from U and V.
constexpr int kLumaOffset = 16;
constexpr int kChromaOffset = 128;

/// Fraction bits of the coefficients.
constexpr int kFractionBits = 6;

/// The arguments of the exported conversions. Kernels are called with positive sizes, no null pointers, and
/// an output stride that is a multiple of 4.
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

/// How the pixels are written. kPastCaches uses non-temporal stores and requires an output address and stride
/// that are multiples of 64.
enum class Writing { kThroughCaches, kPastCaches };

void ConvertAvx2(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertAvx512Bw(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertAvx512Vbmi(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertScalar(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertSse2(const Matrix& matrix, const Picture& picture, Writing writing);

}  // namespace velm::yuv
