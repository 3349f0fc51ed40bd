// SSE2, which every 64-bit processor has.
#include <emmintrin.h>

#include "YuvBlocks.h"

namespace velm::yuv {
namespace {

class Sse2Block {
public:
    static constexpr std::size_t kPixels = 16;

    struct Chroma {
        __m128i red;
        __m128i green;
        __m128i blue;
    };

    explicit Sse2Block(const Matrix& matrix)
        : m_luma(_mm_set1_epi16(matrix.luma)),
          m_vToRed(_mm_set1_epi16(matrix.vToRed)),
          m_uToGreen(_mm_set1_epi16(matrix.uToGreen)),
          m_vToGreen(_mm_set1_epi16(matrix.vToGreen)),
          m_uToBlue(_mm_set1_epi16(matrix.uToBlue)),
          m_redOffset(Offset(matrix, matrix.vToRed)),
          m_greenOffset(Offset(matrix, -matrix.uToGreen - matrix.vToGreen)),
          m_blueOffset(Offset(matrix, matrix.uToBlue)) {}

    // The products may wrap in 16 bits; what they are after the offset does not, so it is right.
    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m128i us = LoadWords(u);
        const __m128i vs = LoadWords(v);
        const __m128i green = _mm_add_epi16(_mm_mullo_epi16(us, m_uToGreen), _mm_mullo_epi16(vs, m_vToGreen));
        return {_mm_sub_epi16(_mm_mullo_epi16(vs, m_vToRed), m_redOffset),
                _mm_add_epi16(green, m_greenOffset),
                _mm_sub_epi16(_mm_mullo_epi16(us, m_uToBlue), m_blueOffset)};
    }

    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m128i luma = _mm_loadu_si128(reinterpret_cast<const __m128i*>(y));
        const __m128i even = _mm_mullo_epi16(_mm_and_si128(luma, _mm_set1_epi16(0xFF)), m_luma);
        const __m128i odd = _mm_mullo_epi16(_mm_srli_epi16(luma, 8), m_luma);
        const __m128i blue = Pack(_mm_adds_epi16(even, chroma.blue), _mm_adds_epi16(odd, chroma.blue));
        const __m128i green = Pack(_mm_sub_epi16(even, chroma.green), _mm_sub_epi16(odd, chroma.green));
        const __m128i red = Pack(_mm_add_epi16(even, chroma.red), _mm_add_epi16(odd, chroma.red));
        const __m128i zero = _mm_setzero_si128();
        StoreHalf(_mm_unpacklo_epi16(_mm_unpacklo_epi8(blue, green), _mm_unpacklo_epi8(red, zero)),
                  _mm_unpacklo_epi16(_mm_unpackhi_epi8(blue, green), _mm_unpackhi_epi8(red, zero)), argb);
        StoreHalf(_mm_unpackhi_epi16(_mm_unpacklo_epi8(blue, green), _mm_unpacklo_epi8(red, zero)),
                  _mm_unpackhi_epi16(_mm_unpackhi_epi8(blue, green), _mm_unpackhi_epi8(red, zero)),
                  argb + 32);
    }

private:
    static __m128i Offset(const Matrix& matrix, int chromaFactor) {
        return _mm_set1_epi16(static_cast<short>(matrix.luma * kLumaOffset + chromaFactor * kChromaOffset));
    }

    static __m128i LoadWords(const unsigned char* bytes) {
        return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)),
                                 _mm_setzero_si128());
    }

    static __m128i Pack(__m128i even, __m128i odd) {
        return _mm_packus_epi16(_mm_srai_epi16(even, kFractionBits), _mm_srai_epi16(odd, kFractionBits));
    }

    static void StoreHalf(__m128i even, __m128i odd, unsigned char* argb) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(argb), _mm_unpacklo_epi32(even, odd));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(argb + 16), _mm_unpackhi_epi32(even, odd));
    }

    __m128i m_luma;
    __m128i m_vToRed;
    __m128i m_uToGreen;
    __m128i m_vToGreen;
    __m128i m_uToBlue;
    __m128i m_redOffset;
    __m128i m_greenOffset;
    __m128i m_blueOffset;
};

}  // namespace

void ConvertSse2(const Matrix& matrix, const Rows& rows) {
    BlockLoop<Sse2Block>::Convert(matrix, rows);
}

}  // namespace velm::yuv
