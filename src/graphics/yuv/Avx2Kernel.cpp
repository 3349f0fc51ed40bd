// AVX2. Most of its operations work within 128-bit lanes, so pixels are distributed over the lanes as they
// are loaded: of every 8, the lower lane gets pixels 0 to 3 and the upper one 4 to 7. Every store then writes
// 8 adjacent pixels.
#include <immintrin.h>

#include "graphics/yuv/YuvBlocks.h"

namespace velm::yuv {
namespace {

__m256i Words(int value) {
    return _mm256_set1_epi16(static_cast<short>(value));
}

class Avx2Block {
public:
    static constexpr std::size_t kPixels = 32;

    struct Chroma {
        __m256i red;  // with kClampBias
        __m256i green;
        __m256i blue;
    };

    explicit Avx2Block(const Matrix& matrix)
        : m_evenLuma(Words(BytePair(matrix.luma, 0))),
          m_oddLuma(Words(BytePair(0, matrix.luma))),
          m_red(Words(BytePair(0, matrix.vToRed))),
          m_green(Words(BytePair(matrix.uToGreen, matrix.vToGreen))),
          m_blue(Words(BytePair(matrix.uToBlue, 0))),
          m_lumaOffset(Words(matrix.luma * kLumaOffset)),
          m_redOffset(Words(matrix.luma * kLumaOffset - kClampBias)) {}

    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        // U goes to the even bytes, V to the odd ones.
        constexpr char kZero = -1;  // an index that selects a zero
        const __m256i uPlaces = _mm256_setr_epi8(
            0, kZero, 1, kZero, 4, kZero, 5, kZero, 8, kZero, 9, kZero, 12, kZero, 13, kZero,  //
            2, kZero, 3, kZero, 6, kZero, 7, kZero, 10, kZero, 11, kZero, 14, kZero, 15, kZero);
        const __m256i vPlaces = _mm256_setr_epi8(
            kZero, 0, kZero, 1, kZero, 4, kZero, 5, kZero, 8, kZero, 9, kZero, 12, kZero, 13,  //
            kZero, 2, kZero, 3, kZero, 6, kZero, 7, kZero, 10, kZero, 11, kZero, 14, kZero, 15);
        const __m256i pairs = _mm256_or_si256(_mm256_shuffle_epi8(LoadTwice(u), uPlaces),
                                              _mm256_shuffle_epi8(LoadTwice(v), vPlaces));
        const __m256i centred = _mm256_xor_si256(pairs, _mm256_set1_epi8(-kChromaOffset));
        return {_mm256_sub_epi16(_mm256_maddubs_epi16(m_red, centred), m_redOffset),
                _mm256_add_epi16(_mm256_maddubs_epi16(m_green, centred), m_lumaOffset),
                _mm256_sub_epi16(_mm256_maddubs_epi16(m_blue, centred), m_lumaOffset)};
    }

    template <bool kStream>
    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m256i luma =
            _mm256_permutevar8x32_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(y)),
                                        _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
        const __m256i even = _mm256_maddubs_epi16(luma, m_evenLuma);
        const __m256i odd = _mm256_maddubs_epi16(luma, m_oddLuma);
        const __m256i blue = Pack(_mm256_adds_epi16(even, chroma.blue), _mm256_adds_epi16(odd, chroma.blue));
        const __m256i green = Pack(_mm256_sub_epi16(even, chroma.green), _mm256_sub_epi16(odd, chroma.green));
        const __m256i evenRed = ClampRed(_mm256_adds_epu16(even, chroma.red));
        const __m256i oddRed = ClampRed(_mm256_adds_epu16(odd, chroma.red));
        const __m256i evenBlueGreen = _mm256_unpacklo_epi8(blue, green);
        const __m256i oddBlueGreen = _mm256_unpackhi_epi8(blue, green);
        StoreHalf<kStream>(_mm256_unpacklo_epi16(evenBlueGreen, evenRed),
                           _mm256_unpacklo_epi16(oddBlueGreen, oddRed), argb);
        StoreHalf<kStream>(_mm256_unpackhi_epi16(evenBlueGreen, evenRed),
                           _mm256_unpackhi_epi16(oddBlueGreen, oddRed), argb + 64);
    }

private:
    static __m256i LoadTwice(const unsigned char* bytes) {
        return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)));
    }

    static __m256i Pack(__m256i even, __m256i odd) {
        return _mm256_packus_epi16(_mm256_srai_epi16(even, kFractionBits),
                                   _mm256_srai_epi16(odd, kFractionBits));
    }

    static __m256i ClampRed(__m256i biased) {
        return _mm256_srli_epi16(_mm256_subs_epu16(biased, Words(kClampBias)), kFractionBits);
    }

    template <bool kStream>
    static void StoreHalf(__m256i even, __m256i odd, unsigned char* argb) {
        Store<kStream>(_mm256_unpacklo_epi32(even, odd), argb);
        Store<kStream>(_mm256_unpackhi_epi32(even, odd), argb + 32);
    }

    template <bool kStream>
    static void Store(__m256i pixels, unsigned char* argb) {
        if constexpr (kStream) {
            _mm256_stream_si256(reinterpret_cast<__m256i*>(argb), pixels);
        } else {
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(argb), pixels);
        }
    }

    __m256i m_evenLuma;
    __m256i m_oddLuma;
    __m256i m_red;
    __m256i m_green;
    __m256i m_blue;
    __m256i m_lumaOffset;
    __m256i m_redOffset;
};

}  // namespace

void ConvertAvx2(const Matrix& matrix, const Picture& picture, Writing writing) {
    BlockLoop<Avx2Block>::Convert(matrix, picture, writing);
}

}  // namespace velm::yuv
