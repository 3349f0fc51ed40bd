// AVX2. Of every 8 pixels, the lower lane gets 0 to 3 and the upper one 4 to 7.
#include <immintrin.h>

#include "graphics/yuv/ByteProducts.h"

namespace velm::yuv {
namespace {

struct Avx2 {
    using Register = __m256i;

    static Register LoadLuma(const unsigned char* y) {
        return _mm256_permutevar8x32_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(y)),
                                           _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
    }

    static Register LoadChroma(const unsigned char* u, const unsigned char* v) {
        // U goes to the even bytes, V to the odd ones.
        constexpr char kZero = -1;  // an index that selects a zero
        const __m256i uPlaces = _mm256_setr_epi8(
            0, kZero, 1, kZero, 4, kZero, 5, kZero, 8, kZero, 9, kZero, 12, kZero, 13, kZero,  //
            2, kZero, 3, kZero, 6, kZero, 7, kZero, 10, kZero, 11, kZero, 14, kZero, 15, kZero);
        const __m256i vPlaces = _mm256_setr_epi8(
            kZero, 0, kZero, 1, kZero, 4, kZero, 5, kZero, 8, kZero, 9, kZero, 12, kZero, 13,  //
            kZero, 2, kZero, 3, kZero, 6, kZero, 7, kZero, 10, kZero, 11, kZero, 14, kZero, 15);
        return _mm256_or_si256(_mm256_shuffle_epi8(LoadTwice(u), uPlaces),
                               _mm256_shuffle_epi8(LoadTwice(v), vPlaces));
    }

    static __m256i LoadTwice(const unsigned char* bytes) {
        return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
    }

    template <bool kStream>
    static void Store(Register pixels, unsigned char* argb) {
        if constexpr (kStream) {
            _mm256_stream_si256(reinterpret_cast<__m256i*>(argb), pixels);
        } else {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(argb), pixels);
        }
    }

    static Register Words(int value) { return _mm256_set1_epi16(static_cast<short>(value)); }
    static Register Centre(Register chroma) {
        return _mm256_xor_si256(chroma, _mm256_set1_epi8(-kChromaOffset));
    }
    static Register MultiplyAdd(Register a, Register b) { return _mm256_maddubs_epi16(a, b); }
    static Register Add(Register a, Register b) { return _mm256_add_epi16(a, b); }
    static Register AddSaturated(Register a, Register b) { return _mm256_adds_epi16(a, b); }
    static Register AddSaturatedUnsigned(Register a, Register b) { return _mm256_adds_epu16(a, b); }
    static Register Subtract(Register a, Register b) { return _mm256_sub_epi16(a, b); }
    static Register SubtractSaturatedUnsigned(Register a, Register b) { return _mm256_subs_epu16(a, b); }
    template <int kBits>
    static Register ShiftRight(Register a) {
        return _mm256_srai_epi16(a, kBits);
    }
    template <int kBits>
    static Register ShiftRightUnsigned(Register a) {
        return _mm256_srli_epi16(a, kBits);
    }
    static Register PackUnsigned(Register a, Register b) { return _mm256_packus_epi16(a, b); }
    static Register UnpackLow8(Register a, Register b) { return _mm256_unpacklo_epi8(a, b); }
    static Register UnpackHigh8(Register a, Register b) { return _mm256_unpackhi_epi8(a, b); }
    static Register UnpackLow16(Register a, Register b) { return _mm256_unpacklo_epi16(a, b); }
    static Register UnpackHigh16(Register a, Register b) { return _mm256_unpackhi_epi16(a, b); }
    static Register UnpackLow32(Register a, Register b) { return _mm256_unpacklo_epi32(a, b); }
    static Register UnpackHigh32(Register a, Register b) { return _mm256_unpackhi_epi32(a, b); }
};

}  // namespace

void ConvertAvx2(const Matrix& matrix, const Picture& picture, Writing writing) {
    BlockLoop<LaneBlock<Avx2>>::Convert(matrix, picture, writing);
}

}  // namespace velm::yuv
