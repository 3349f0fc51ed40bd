// AVX-512 with VBMI, which can permute bytes and so assembles 16 pixels in one instruction.
#include <immintrin.h>

#include "graphics/yuv/YuvBlocks.h"

namespace velm::yuv {
namespace {

/// Indices for a byte permute: 0 to 63 select from its first register, 64 to 127 from its second.
struct alignas(64) Index {
    unsigned char byte[64];
};

constexpr int kSecond = 64;

/// Pairs each U with its V, from a register that holds 32 U followed by 32 V.
constexpr Index MakeChromaIndex() {
    Index index{};
    for (int block = 0; block < 32; ++block) {
        index.byte[2 * block] = static_cast<unsigned char>(block);
        index.byte[2 * block + 1] = static_cast<unsigned char>(32 + block);
    }
    return index;
}

/// Where Pack puts a pixel: of every 16, the 8 even ones come first, then the 8 odd ones.
constexpr int PackedPlace(int pixel) {
    return pixel / 16 * 16 + pixel % 2 * 8 + pixel % 16 / 2;
}

/// Pairs blue and green of 32 pixels.
constexpr Index MakeBlueGreenIndex(int firstPixel) {
    Index index{};
    for (int pixel = 0; pixel < 32; ++pixel) {
        const int place = PackedPlace(firstPixel + pixel);
        index.byte[2 * pixel] = static_cast<unsigned char>(place);
        index.byte[2 * pixel + 1] = static_cast<unsigned char>(kSecond + place);
    }
    return index;
}

/// Assembles 16 pixels from the blue-green pairs that MakeBlueGreenIndex arranged, and from red. The mask
/// kColourBytes zeroes the fourth byte.
constexpr Index MakePixelIndex(int firstPixel) {
    Index index{};
    for (int pixel = 0; pixel < 16; ++pixel) {
        index.byte[4 * pixel] = static_cast<unsigned char>(2 * (firstPixel % 32 + pixel));
        index.byte[4 * pixel + 1] = static_cast<unsigned char>(2 * (firstPixel % 32 + pixel) + 1);
        index.byte[4 * pixel + 2] = static_cast<unsigned char>(kSecond + PackedPlace(firstPixel + pixel));
    }
    return index;
}

constexpr Index kChromaIndex = MakeChromaIndex();
constexpr Index kBlueGreenIndex[2] = {MakeBlueGreenIndex(0), MakeBlueGreenIndex(32)};
constexpr Index kPixelIndex[4] = {MakePixelIndex(0), MakePixelIndex(16), MakePixelIndex(32),
                                  MakePixelIndex(48)};
constexpr __mmask64 kColourBytes = 0x7777777777777777;

__m512i Load(const Index& index) {
    return _mm512_loadu_si512(&index);
}

__m512i Words(int value) {
    return _mm512_set1_epi16(static_cast<short>(value));
}

class Avx512VbmiBlock {
public:
    static constexpr std::size_t kPixels = 64;

    struct Chroma {
        __m512i red;
        __m512i green;
        __m512i blue;
    };

    explicit Avx512VbmiBlock(const Matrix& matrix)
        : m_evenLuma(Words(BytePair(matrix.luma, 0))),
          m_oddLuma(Words(BytePair(0, matrix.luma))),
          m_red(Words(BytePair(0, matrix.vToRed))),
          m_green(Words(BytePair(matrix.uToGreen, matrix.vToGreen))),
          m_blue(Words(BytePair(matrix.uToBlue, 0))),
          m_lumaOffset(Words(matrix.luma * kLumaOffset)) {}

    Chroma LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m256i us = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(u));
        const __m256i vs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(v));
        const __m512i planes = _mm512_inserti64x4(_mm512_castsi256_si512(us), vs, 1);
        const __m512i pairs = _mm512_permutexvar_epi8(Load(kChromaIndex), planes);
        const __m512i centred = _mm512_xor_si512(pairs, _mm512_set1_epi8(-kChromaOffset));
        return {_mm512_sub_epi16(_mm512_maddubs_epi16(m_red, centred), m_lumaOffset),
                _mm512_add_epi16(_mm512_maddubs_epi16(m_green, centred), m_lumaOffset),
                _mm512_sub_epi16(_mm512_maddubs_epi16(m_blue, centred), m_lumaOffset)};
    }

    template <bool kStream>
    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const __m512i luma = _mm512_loadu_si512(y);
        const __m512i even = _mm512_maddubs_epi16(luma, m_evenLuma);
        const __m512i odd = _mm512_maddubs_epi16(luma, m_oddLuma);
        const __m512i blue = Pack(_mm512_adds_epi16(even, chroma.blue), _mm512_adds_epi16(odd, chroma.blue));
        const __m512i green = Pack(_mm512_sub_epi16(even, chroma.green), _mm512_sub_epi16(odd, chroma.green));
        const __m512i red = Pack(_mm512_add_epi16(even, chroma.red), _mm512_add_epi16(odd, chroma.red));
        for (int half = 0; half < 2; ++half) {
            const __m512i blueGreen = _mm512_permutex2var_epi8(blue, Load(kBlueGreenIndex[half]), green);
            for (int quarter = 2 * half; quarter < 2 * half + 2; ++quarter) {
                const __m512i pixels =
                    _mm512_maskz_permutex2var_epi8(kColourBytes, blueGreen, Load(kPixelIndex[quarter]), red);
                Store<kStream>(pixels, argb + 64 * quarter);
            }
        }
    }

private:
    static __m512i Pack(__m512i even, __m512i odd) {
        return _mm512_packus_epi16(_mm512_srai_epi16(even, kFractionBits),
                                   _mm512_srai_epi16(odd, kFractionBits));
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
};

}  // namespace

void ConvertAvx512Vbmi(const Matrix& matrix, const Picture& picture, Writing writing) {
    BlockLoop<Avx512VbmiBlock>::Convert(matrix, picture, writing);
}

}  // namespace velm::yuv
