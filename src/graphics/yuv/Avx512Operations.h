/// @file
/// The instructions of AVX-512BW that its two kernels use.
#pragma once

#include <immintrin.h>

#include "graphics/yuv/ByteProducts.h"

namespace velm::yuv {

/// @tparam Kernel  a class in an anonymous namespace: the kernels are compiled for different processors, so
/// they
///                 must not share functions
template <class Kernel>
struct Avx512Operations {
    using Register = __m512i;

    /// 32 bytes of each plane: U, then V.
    static Register LoadPlanes(const unsigned char* u, const unsigned char* v) {
        const __m256i us = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(u));
        const __m256i vs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(v));
        return _mm512_inserti64x4(_mm512_castsi256_si512(us), vs, 1);
    }

    template <bool kStream>
    static void Store(Register pixels, unsigned char* argb) {
        if constexpr (kStream) {
            _mm512_stream_si512(reinterpret_cast<__m512i*>(argb), pixels);
        } else {
            _mm512_storeu_si512(argb, pixels);
        }
    }

    static Register Words(int value) { return _mm512_set1_epi16(static_cast<short>(value)); }
    static Register Centre(Register chroma) {
        return _mm512_xor_si512(chroma, _mm512_set1_epi8(-kChromaOffset));
    }
    static Register MultiplyAdd(Register a, Register b) { return _mm512_maddubs_epi16(a, b); }
    static Register Add(Register a, Register b) { return _mm512_add_epi16(a, b); }
    static Register AddSaturated(Register a, Register b) { return _mm512_adds_epi16(a, b); }
    static Register AddSaturatedUnsigned(Register a, Register b) { return _mm512_adds_epu16(a, b); }
    static Register Subtract(Register a, Register b) { return _mm512_sub_epi16(a, b); }
    static Register SubtractSaturatedUnsigned(Register a, Register b) { return _mm512_subs_epu16(a, b); }
    template <int kBits>
    static Register ShiftRight(Register a) {
        return _mm512_srai_epi16(a, kBits);
    }
    template <int kBits>
    static Register ShiftRightUnsigned(Register a) {
        return _mm512_srli_epi16(a, kBits);
    }
    static Register PackUnsigned(Register a, Register b) { return _mm512_packus_epi16(a, b); }
    static Register UnpackLow8(Register a, Register b) { return _mm512_unpacklo_epi8(a, b); }
    static Register UnpackHigh8(Register a, Register b) { return _mm512_unpackhi_epi8(a, b); }
    static Register UnpackLow16(Register a, Register b) { return _mm512_unpacklo_epi16(a, b); }
    static Register UnpackHigh16(Register a, Register b) { return _mm512_unpackhi_epi16(a, b); }
    static Register UnpackLow32(Register a, Register b) { return _mm512_unpacklo_epi32(a, b); }
    static Register UnpackHigh32(Register a, Register b) { return _mm512_unpackhi_epi32(a, b); }
};

}  // namespace velm::yuv
