#include <immintrin.h>

#include "YuvBlocks.h"

namespace velm::yuv {
namespace {

class Avx2Block {
public:
    static constexpr std::size_t kPixels = 32;

    struct Chroma {
        __m256i red;
        __m256i green;
        __m256i blue;
    };

    explicit Avx2Block(const Matrix& matrix)
        : m_evenLuma(Factors(matrix.luma, 0)),
          m_oddLuma(Factors(0, matrix.luma)),
          m_red(Factors(0, matrix.vToRed)),
          m_green(Factors(matrix.uToGreen, matrix.vToGreen)),
          m_blue(Factors(matrix.uToBlue, 0)),
          m_lumaOffset(_mm256_set1_epi16(static_cast<short>(matrix.luma * kLumaOffset))) {}

    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m128i us = _mm_loadu_si128(reinterpret_cast<const __m128i*>(u));
        const __m128i vs = _mm_loadu_si128(reinterpret_cast<const __m128i*>(v));
        const __m256i pairs = SpreadOverLanes(_mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_unpacklo_epi8(us, vs)), _mm_unpackhi_epi8(us, vs), 1));
        const __m256i centred = _mm256_xor_si256(pairs, _mm256_set1_epi8(-kChromaOffset));
        return {_mm256_sub_epi16(_mm256_maddubs_epi16(m_red, centred), m_lumaOffset),
                _mm256_add_epi16(_mm256_maddubs_epi16(m_green, centred), m_lumaOffset),
                _mm256_sub_epi16(_mm256_maddubs_epi16(m_blue, centred), m_lumaOffset)};
    }

    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m256i luma = SpreadOverLanes(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(y)));
        const __m256i even = _mm256_maddubs_epi16(luma, m_evenLuma);
        const __m256i odd = _mm256_maddubs_epi16(luma, m_oddLuma);
        const __m256i blue = Pack(_mm256_adds_epi16(even, chroma.blue), _mm256_adds_epi16(odd, chroma.blue));
        const __m256i green = Pack(_mm256_sub_epi16(even, chroma.green), _mm256_sub_epi16(odd, chroma.green));
        const __m256i red = Pack(_mm256_add_epi16(even, chroma.red), _mm256_add_epi16(odd, chroma.red));
        const __m256i zero = _mm256_setzero_si256();
        const __m256i evenBlueGreen = _mm256_unpacklo_epi8(blue, green);
        const __m256i oddBlueGreen = _mm256_unpackhi_epi8(blue, green);
        const __m256i evenRed = _mm256_unpacklo_epi8(red, zero);
        const __m256i oddRed = _mm256_unpackhi_epi8(red, zero);
        StoreHalf(_mm256_unpacklo_epi16(evenBlueGreen, evenRed), _mm256_unpacklo_epi16(oddBlueGreen, oddRed),
                  argb);
        StoreHalf(_mm256_unpackhi_epi16(evenBlueGreen, evenRed), _mm256_unpackhi_epi16(oddBlueGreen, oddRed),
                  argb + 64);
    }

private:
    static __m256i Factors(int first, int second) {
        return _mm256_set1_epi16(static_cast<short>(second << 8 | first));
    }

    static __m256i SpreadOverLanes(__m256i bytes) {
        return _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
    }

    static __m256i Pack(__m256i even, __m256i odd) {
        return _mm256_packus_epi16(_mm256_srai_epi16(even, kFractionBits),
                                   _mm256_srai_epi16(odd, kFractionBits));
    }

    static void StoreHalf(__m256i even, __m256i odd, unsigned char* argb) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(argb), _mm256_unpacklo_epi32(even, odd));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(argb + 32), _mm256_unpackhi_epi32(even, odd));
    }

    __m256i m_evenLuma;
    __m256i m_oddLuma;
    __m256i m_red;
    __m256i m_green;
    __m256i m_blue;
    __m256i m_lumaOffset;
};

}  // namespace

void ConvertAvx2(const Matrix& matrix, const Rows& rows) {
    BlockLoop<Avx2Block>::Convert(matrix, rows);
}

}  // namespace velm::yuv
