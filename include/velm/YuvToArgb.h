#pragma once

#include "velm/UtilErrorCode.h"

namespace velm {

/// Converts a picture in planar YUV 4:2:0, limited range, into 32-bit pixels: with the matrix of ITU-R
/// BT.601, and with that of ITU-R BT.709.
///
/// A pixel is 0x00RRGGBB, in memory the bytes B, G, R, 0. With y = 74 * (Y - 16), u = U - 128 and v = V - 128
///
///     BT.601:  R = (y + 102 v) >> 6    G = (y - 25 u - 52 v) >> 6    B = (y + 129 u) >> 6
///     BT.709:  R = (y + 115 v) >> 6    G = (y - 14 u - 34 v) >> 6    B = (y + 135 u) >> 6
///
/// each rounded down and clamped to 0 to 255. The pixels of a 2 x 2 block share one U and V.
///
/// Exactly width * height pixels are read and written, of any size, odd ones included, and nothing between or
/// beyond the rows. No address and no stride needs an alignment. The output must not overlap a plane.
///
/// @param yPlane  one byte per pixel; row r begins at r * yStride; the caller's, as are all the planes
/// @param uPlane  one byte per 2 x 2 block, (width + 1) / 2 in a row; row r begins at r / 2 * uvStride
/// @param vPlane  as uPlane
/// @param yStride  in bytes
/// @param uvStride  in bytes, of either chroma plane
/// @param width, height  in pixels; nothing is read or written when one of them is not positive, or when an
///                       address is null
/// @param argb  receives the pixels; row r begins at r * (argbStride / 4) pixels; the caller's
/// @param argbStride  in bytes, used rounded down to whole pixels
/// Threads: any number at once, on outputs that do not overlap.
VELM_UTIL_API void Yuv420ToArgb8888_BT601(unsigned char* yPlane, unsigned char* uPlane, unsigned char* vPlane,
                                          unsigned int yStride, unsigned int uvStride, int width, int height,
                                          unsigned int* argb, unsigned int argbStride);

VELM_UTIL_API void Yuv420ToArgb8888_BT709(unsigned char* yPlane, unsigned char* uPlane, unsigned char* vPlane,
                                          unsigned int yStride, unsigned int uvStride, int width, int height,
                                          unsigned int* argb, unsigned int argbStride);

}  // namespace velm
