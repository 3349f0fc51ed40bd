/// @file
/// What passes between the picture conversion and its kernels. The kernels are compiled for processors that
/// need not be there, so this header and YuvBlocks.h hold nothing that a linker could take from one of them
/// for the rest of the library: no inline functions, no templates over types that others share, nothing
/// of the standard library.
#pragma once

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

/// The arguments of the exported conversions. A kernel gets sizes above 0, no null, and an output
/// stride of whole pixels.
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

/// How the pixels are written. Past the caches, the address and the stride of the output are multiples of 64.
enum class Writing { kThroughCaches, kPastCaches };

void ConvertAvx2(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertAvx512Bw(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertAvx512Vbmi(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertScalar(const Matrix& matrix, const Picture& picture, Writing writing);
void ConvertSse2(const Matrix& matrix, const Picture& picture, Writing writing);

}  // namespace velm::yuv
