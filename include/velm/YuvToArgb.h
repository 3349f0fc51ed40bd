#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Converts a planar YUV 4:2:0 picture in limited range to 32-bit pixels, with the colour matrix of ITU-R
/// BT.601 or ITU-R BT.709.
///
/// A pixel is 0x00RRGGBB: the bytes B, G, R, 0 in memory. With y = 74 * (Y - 16), u = U - 128, v = V - 128:
///
///     BT.601:  R = (y + 102 v) >> 6    G = (y - 25 u - 52 v) >> 6    B = (y + 129 u) >> 6
///     BT.709:  R = (y + 115 v) >> 6    G = (y - 14 u - 34 v) >> 6    B = (y + 135 u) >> 6
///
/// each rounded down and clamped to 0 to 255. The pixels of a 2 x 2 block share one U and V.
///
/// Any size is supported, including odd ones. Nothing between or beyond the rows is read or written.
/// Addresses and strides need no alignment. The output must not overlap a plane.
///
/// @param yPlane  one byte per pixel; pixel row r starts at r * yStride; owned by the caller, like all planes
/// @param uPlane  one byte per 2 x 2 block, (width + 1) / 2 per row; pixel row r uses the one at
///                r / 2 * uvStride
/// @param vPlane  as uPlane
/// @param yStride  in bytes
/// @param uvStride  in bytes, for both chroma planes
/// @param width, height  in pixels; if either is not positive, or an address is null, nothing happens
/// @param argb  out: the pixels; row r starts at pixel r * (argbStride / 4); owned by the caller
/// @param argbStride  in bytes, rounded down to a multiple of 4
/// Threads: any, on outputs that do not overlap.
VELM_UTIL_API void Yuv420ToArgb8888_BT601(unsigned char* yPlane, unsigned char* uPlane, unsigned char* vPlane,
                                          unsigned int yStride, unsigned int uvStride, int width, int height,
                                          unsigned int* argb, unsigned int argbStride);

VELM_UTIL_API void Yuv420ToArgb8888_BT709(unsigned char* yPlane, unsigned char* uPlane, unsigned char* vPlane,
                                          unsigned int yStride, unsigned int uvStride, int width, int height,
                                          unsigned int* argb, unsigned int argbStride);

/// Names the instruction set that the conversions use on this processor, for logs and reports.
/// @return "avx512vbmi", "avx512bw", "avx2", "sse2" or "scalar"; owned by the library
/// Threads: any.
VELM_UTIL_API const char* GetYuvToArgbKernelName();

}  // namespace velm
