#include <immintrin.h>

#include "YuvBlocks.h"

namespace velm::yuv {
namespace {

class Avx512BwBlock {
public:
    static constexpr std::size_t kPixels = 64;

    struct Chroma {
        __m512i red;
        __m512i green;
        __m512i blue;
    };

    explicit Avx512BwBlock(const Matrix& matrix)
        : m_evenLuma(Factors(matrix.luma, 0)),
          m_oddLuma(Factors(0, matrix.luma)),
          m_red(Factors(0, matrix.vToRed)),
          m_green(Factors(matrix.uToGreen, matrix.vToGreen)),
          m_blue(Factors(matrix.uToBlue, 0)),
          m_lumaOffset(_mm512_set1_epi16(static_cast<short>(matrix.luma * kLumaOffset))) {}

    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m256i us = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(u));
        const __m256i vs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(v));
        const __m512i planes = _mm512_inserti64x4(_mm512_castsi256_si512(us), vs, 1);
        const __m512i words = _mm512_permutexvar_epi16(m_chromaWords, planes);
        const __m512i pairs = _mm512_unpacklo_epi8(words, _mm512_bsrli_epi128(words, 8));
        const __m512i centred = _mm512_xor_si512(pairs, _mm512_set1_epi8(-kChromaOffset));
        return {_mm512_sub_epi16(_mm512_maddubs_epi16(m_red, centred), m_lumaOffset),
                _mm512_add_epi16(_mm512_maddubs_epi16(m_green, centred), m_lumaOffset),
                _mm512_sub_epi16(_mm512_maddubs_epi16(m_blue, centred), m_lumaOffset)};
    }

    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m512i luma = _mm512_permutexvar_epi32(m_lumaWords, _mm512_loadu_si512(y));
        const __m512i even = _mm512_maddubs_epi16(luma, m_evenLuma);
        const __m512i odd = _mm512_maddubs_epi16(luma, m_oddLuma);
        const __m512i blue = Pack(_mm512_adds_epi16(even, chroma.blue), _mm512_adds_epi16(odd, chroma.blue));
        const __m512i green = Pack(_mm512_sub_epi16(even, chroma.green), _mm512_sub_epi16(odd, chroma.green));
        const __m512i red = Pack(_mm512_add_epi16(even, chroma.red), _mm512_add_epi16(odd, chroma.red));
        const __m512i zero = _mm512_setzero_si512();
        const __m512i evenBlueGreen = _mm512_unpacklo_epi8(blue, green);
        const __m512i oddBlueGreen = _mm512_unpackhi_epi8(blue, green);
        const __m512i evenRed = _mm512_unpacklo_epi8(red, zero);
        const __m512i oddRed = _mm512_unpackhi_epi8(red, zero);
        StoreHalf(_mm512_unpacklo_epi16(evenBlueGreen, evenRed), _mm512_unpacklo_epi16(oddBlueGreen, oddRed),
                  argb);
        StoreHalf(_mm512_unpackhi_epi16(evenBlueGreen, evenRed), _mm512_unpackhi_epi16(oddBlueGreen, oddRed),
                  argb + 128);
    }

private:
    static __m512i Factors(int first, int second) {
        return _mm512_set1_epi16(static_cast<short>(second << 8 | first));
    }

    static __m512i Pack(__m512i even, __m512i odd) {
        return _mm512_packus_epi16(_mm512_srai_epi16(even, kFractionBits),
                                   _mm512_srai_epi16(odd, kFractionBits));
    }

    static void StoreHalf(__m512i even, __m512i odd, unsigned char* argb) {
        _mm512_storeu_si512(argb, _mm512_unpacklo_epi32(even, odd));
        _mm512_storeu_si512(argb + 64, _mm512_unpackhi_epi32(even, odd));
    }

    __m512i m_evenLuma;
    __m512i m_oddLuma;
    __m512i m_red;
    __m512i m_green;
    __m512i m_blue;
    __m512i m_lumaOffset;
    __m512i m_lumaWords = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    __m512i m_chromaWords = _mm512_set_epi16(31, 27, 23, 19, 15, 11, 7, 3, 30, 26, 22, 18, 14, 10, 6, 2, 29,
                                             25, 21, 17, 13, 9, 5, 1, 28, 24, 20, 16, 12, 8, 4, 0);
};

}  // namespace

void ConvertAvx512Bw(const Matrix& matrix, const Rows& rows) {
    BlockLoop<Avx512BwBlock>::Convert(matrix, rows);
}

}  // namespace velm::yuv
