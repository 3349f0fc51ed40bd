// AVX-512 with BW. As in the AVX2 kernel, pixels are distributed over the 128-bit lanes as they are loaded:
// each lane gets 4 of every 16.
#include <immintrin.h>

#include "graphics/yuv/YuvBlocks.h"

namespace velm::yuv {
namespace {

alignas(64) constexpr int kLumaPlaces[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};

// Indices of 16-bit words in 16 words of U followed by 16 of V: each lane gets 4 of both.
alignas(64) constexpr short kChromaPlaces[32] = {0, 4, 8,  12, 16, 20, 24, 28, 1, 5, 9,  13, 17, 21, 25, 29,
                                                 2, 6, 10, 14, 18, 22, 26, 30, 3, 7, 11, 15, 19, 23, 27, 31};

__m512i Words(int value) {
    return _mm512_set1_epi16(static_cast<short>(value));
}

class Avx512BwBlock {
public:
    static constexpr std::size_t kPixels = 64;

    struct Chroma {
        __m512i red;  // with kClampBias
        __m512i green;
        __m512i blue;
    };

    explicit Avx512BwBlock(const Matrix& matrix)
        : m_evenLuma(Words(BytePair(matrix.luma, 0))),
          m_oddLuma(Words(BytePair(0, matrix.luma))),
          m_red(Words(BytePair(0, matrix.vToRed))),
          m_green(Words(BytePair(matrix.uToGreen, matrix.vToGreen))),
          m_blue(Words(BytePair(matrix.uToBlue, 0))),
          m_lumaOffset(Words(matrix.luma * kLumaOffset)),
          m_redOffset(Words(matrix.luma * kLumaOffset - kClampBias)) {}

    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m256i us = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(u));
        const __m256i vs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(v));
        const __m512i planes = _mm512_inserti64x4(_mm512_castsi256_si512(us), vs, 1);
        const __m512i byLane = _mm512_permutexvar_epi16(_mm512_loadu_si512(kChromaPlaces), planes);
        const __m512i pairs = _mm512_unpacklo_epi8(byLane, _mm512_bsrli_epi128(byLane, 8));
        const __m512i centred = _mm512_xor_si512(pairs, _mm512_set1_epi8(-kChromaOffset));
        return {_mm512_sub_epi16(_mm512_maddubs_epi16(m_red, centred), m_redOffset),
                _mm512_add_epi16(_mm512_maddubs_epi16(m_green, centred), m_lumaOffset),
                _mm512_sub_epi16(_mm512_maddubs_epi16(m_blue, centred), m_lumaOffset)};
    }

    template <bool kStream>
    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m512i luma = _mm512_permutexvar_epi32(_mm512_loadu_si512(kLumaPlaces), _mm512_loadu_si512(y));
        const __m512i even = _mm512_maddubs_epi16(luma, m_evenLuma);
        const __m512i odd = _mm512_maddubs_epi16(luma, m_oddLuma);
        const __m512i blue = Pack(_mm512_adds_epi16(even, chroma.blue), _mm512_adds_epi16(odd, chroma.blue));
        const __m512i green = Pack(_mm512_sub_epi16(even, chroma.green), _mm512_sub_epi16(odd, chroma.green));
        const __m512i evenRed = ClampRed(_mm512_adds_epu16(even, chroma.red));
        const __m512i oddRed = ClampRed(_mm512_adds_epu16(odd, chroma.red));
        const __m512i evenBlueGreen = _mm512_unpacklo_epi8(blue, green);
        const __m512i oddBlueGreen = _mm512_unpackhi_epi8(blue, green);
        StoreHalf<kStream>(_mm512_unpacklo_epi16(evenBlueGreen, evenRed),
                           _mm512_unpacklo_epi16(oddBlueGreen, oddRed), argb);
        StoreHalf<kStream>(_mm512_unpackhi_epi16(evenBlueGreen, evenRed),
                           _mm512_unpackhi_epi16(oddBlueGreen, oddRed), argb + 128);
    }

private:
    static __m512i Pack(__m512i even, __m512i odd) {
        return _mm512_packus_epi16(_mm512_srai_epi16(even, kFractionBits),
                                   _mm512_srai_epi16(odd, kFractionBits));
    }

    static __m512i ClampRed(__m512i biased) {
        return _mm512_srli_epi16(_mm512_subs_epu16(biased, Words(kClampBias)), kFractionBits);
    }

    template <bool kStream>
    static void StoreHalf(__m512i even, __m512i odd, unsigned char* argb) {
        Store<kStream>(_mm512_unpacklo_epi32(even, odd), argb);
        Store<kStream>(_mm512_unpackhi_epi32(even, odd), argb + 64);
    }

    template <bool kStream>
    static void Store(__m512i pixels, unsigned char* argb) {
        if constexpr (kStream) {
            _mm512_stream_si512(reinterpret_cast<__m512i*>(argb), pixels);
        } else {
            _mm512_storeu_si512(argb, pixels);
        }
    }

    __m512i m_evenLuma;
    __m512i m_oddLuma;
    __m512i m_red;
    __m512i m_green;
    __m512i m_blue;
    __m512i m_lumaOffset;
    __m512i m_redOffset;
};

}  // namespace

void ConvertAvx512Bw(const Matrix& matrix, const Picture& picture, Writing writing) {
    BlockLoop<Avx512BwBlock>::Convert(matrix, picture, writing);
}

}  // namespace velm::yuv
