// SSE2, which every 64-bit processor has. It multiplies no bytes, so U and V become words first.
#include <emmintrin.h>

#include "YuvBlocks.h"

namespace velm::yuv {
namespace {

__m128i Words(int value) {
    return _mm_set1_epi16(static_cast<short>(value));
}

class Sse2Block {
public:
    static constexpr std::size_t kPixels = 16;

    struct Chroma {
        __m128i red;  // with kClampBias
        __m128i green;
        __m128i blue;
    };

    explicit Sse2Block(const Matrix& matrix)
        : m_luma(Words(matrix.luma)),
          m_vToRed(Words(matrix.vToRed)),
          m_uToGreen(Words(matrix.uToGreen)),
          m_vToGreen(Words(matrix.vToGreen)),
          m_uToBlue(Words(matrix.uToBlue)),
          m_redOffset(Words(Offset(matrix, matrix.vToRed) - kClampBias)),
          m_greenOffset(Words(Offset(matrix, -matrix.uToGreen - matrix.vToGreen))),
          m_blueOffset(Words(Offset(matrix, matrix.uToBlue))) {}

    // U and V are not centred here: the products of blue may wrap, and taking the offset off wraps them back.
    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m128i us = LoadWords(u);
        const __m128i vs = LoadWords(v);
        const __m128i green = _mm_add_epi16(_mm_mullo_epi16(us, m_uToGreen), _mm_mullo_epi16(vs, m_vToGreen));
        return {_mm_sub_epi16(_mm_mullo_epi16(vs, m_vToRed), m_redOffset),
                _mm_add_epi16(green, m_greenOffset),
                _mm_sub_epi16(_mm_mullo_epi16(us, m_uToBlue), m_blueOffset)};
    }

    template <bool kStream>
    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m128i luma = _mm_loadu_si128(reinterpret_cast<const __m128i*>(y));
        const __m128i even = _mm_mullo_epi16(_mm_and_si128(luma, Words(0xFF)), m_luma);
        const __m128i odd = _mm_mullo_epi16(_mm_srli_epi16(luma, 8), m_luma);
        const __m128i blue = Pack(_mm_adds_epi16(even, chroma.blue), _mm_adds_epi16(odd, chroma.blue));
        const __m128i green = Pack(_mm_sub_epi16(even, chroma.green), _mm_sub_epi16(odd, chroma.green));
        const __m128i evenRed = ClampRed(_mm_adds_epu16(even, chroma.red));
        const __m128i oddRed = ClampRed(_mm_adds_epu16(odd, chroma.red));
        const __m128i evenBlueGreen = _mm_unpacklo_epi8(blue, green);
        const __m128i oddBlueGreen = _mm_unpackhi_epi8(blue, green);
        StoreHalf<kStream>(_mm_unpacklo_epi16(evenBlueGreen, evenRed),
                           _mm_unpacklo_epi16(oddBlueGreen, oddRed), argb);
        StoreHalf<kStream>(_mm_unpackhi_epi16(evenBlueGreen, evenRed),
                           _mm_unpackhi_epi16(oddBlueGreen, oddRed), argb + 32);
    }

private:
    static int Offset(const Matrix& matrix, int chromaFactor) {
        return matrix.luma * kLumaOffset + chromaFactor * kChromaOffset;
    }

    static __m128i LoadWords(const unsigned char* bytes) {
        return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)),
                                 _mm_setzero_si128());
    }

    static __m128i Pack(__m128i even, __m128i odd) {
        return _mm_packus_epi16(_mm_srai_epi16(even, kFractionBits), _mm_srai_epi16(odd, kFractionBits));
    }

    // The multiplier shifts here: the other shifts and the packing already fill the units that shift.
    static __m128i ClampRed(__m128i biased) {
        return _mm_mulhi_epi16(_mm_subs_epu16(biased, Words(kClampBias)), Words(kShiftFactor));
    }

    template <bool kStream>
    static void StoreHalf(__m128i even, __m128i odd, unsigned char* argb) {
        Store<kStream>(_mm_unpacklo_epi32(even, odd), argb);
        Store<kStream>(_mm_unpackhi_epi32(even, odd), argb + 16);
    }

    template <bool kStream>
    static void Store(__m128i pixels, unsigned char* argb) {
        if constexpr (kStream) {
            _mm_stream_si128(reinterpret_cast<__m128i*>(argb), pixels);
        } else {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(argb), pixels);
        }
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
