// SSE2, which every x86-64 processor has. It cannot multiply bytes, so they are first widened to words: luma
// in pixel order, and each chroma term duplicated for the two pixels that share it.
#include <emmintrin.h>

#include "graphics/yuv/YuvBlocks.h"

namespace velm::yuv {
namespace {

__m128i Words(int value) {
    return _mm_set1_epi16(static_cast<short>(value));
}

class Sse2Block {
public:
    static constexpr std::size_t kPixels = 16;

    struct Chroma {
        __m128i red[2];  // of the left and the right 8 pixels; with kClampBias
        __m128i green[2];
        __m128i blue[2];
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

    // U and V are not centred here, so the products for blue may wrap around; subtracting the offset undoes
    // that.
    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m128i us = LoadWords(u);
        const __m128i vs = LoadWords(v);
        const __m128i red = _mm_sub_epi16(_mm_mullo_epi16(vs, m_vToRed), m_redOffset);
        const __m128i green = _mm_add_epi16(
            _mm_add_epi16(_mm_mullo_epi16(us, m_uToGreen), _mm_mullo_epi16(vs, m_vToGreen)), m_greenOffset);
        const __m128i blue = _mm_sub_epi16(_mm_mullo_epi16(us, m_uToBlue), m_blueOffset);
        return {{_mm_unpacklo_epi16(red, red), _mm_unpackhi_epi16(red, red)},
                {_mm_unpacklo_epi16(green, green), _mm_unpackhi_epi16(green, green)},
                {_mm_unpacklo_epi16(blue, blue), _mm_unpackhi_epi16(blue, blue)}};
    }

    template <bool kStream>
    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m128i luma = _mm_loadu_si128(reinterpret_cast<const __m128i*>(y));
        const __m128i zero = _mm_setzero_si128();
        const __m128i left = _mm_mullo_epi16(_mm_unpacklo_epi8(luma, zero), m_luma);
        const __m128i right = _mm_mullo_epi16(_mm_unpackhi_epi8(luma, zero), m_luma);
        const __m128i blue =
            Pack(_mm_adds_epi16(left, chroma.blue[0]), _mm_adds_epi16(right, chroma.blue[1]));
        const __m128i green =
            Pack(_mm_sub_epi16(left, chroma.green[0]), _mm_sub_epi16(right, chroma.green[1]));
        const __m128i leftRed = ClampRed(_mm_adds_epu16(left, chroma.red[0]));
        const __m128i rightRed = ClampRed(_mm_adds_epu16(right, chroma.red[1]));
        StoreHalf<kStream>(_mm_unpacklo_epi8(blue, green), leftRed, argb);
        StoreHalf<kStream>(_mm_unpackhi_epi8(blue, green), rightRed, argb + 32);
    }

private:
    static int Offset(const Matrix& matrix, int chromaFactor) {
        return matrix.luma * kLumaOffset + chromaFactor * kChromaOffset;
    }

    static __m128i LoadWords(const unsigned char* bytes) {
        return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)),
                                 _mm_setzero_si128());
    }

    static __m128i Pack(__m128i left, __m128i right) {
        return _mm_packus_epi16(_mm_srai_epi16(left, kFractionBits), _mm_srai_epi16(right, kFractionBits));
    }

    // Multiplies instead of shifting, because shifts and packing compete for the same execution units.
    static __m128i ClampRed(__m128i biased) {
        return _mm_mulhi_epi16(_mm_subs_epu16(biased, Words(kClampBias)), Words(kShiftFactor));
    }

    template <bool kStream>
    static void StoreHalf(__m128i blueGreen, __m128i red, unsigned char* argb) {
        Store<kStream>(_mm_unpacklo_epi16(blueGreen, red), argb);
        Store<kStream>(_mm_unpackhi_epi16(blueGreen, red), argb + 16);
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

void ConvertSse2(const Matrix& matrix, const Picture& picture, Writing writing) {
    BlockLoop<Sse2Block>::Convert(matrix, picture, writing);
}

}  // namespace velm::yuv
