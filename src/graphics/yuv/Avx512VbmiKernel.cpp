// AVX-512 with VBMI, which can permute bytes and so assembles 16 pixels in one instruction.
#include "graphics/yuv/Avx512Operations.h"

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

struct Avx512Vbmi : Avx512Operations<Avx512Vbmi> {
    static Register LoadLuma(const unsigned char* y) { return _mm512_loadu_si512(y); }

    static Register LoadChroma(const unsigned char* u, const unsigned char* v) {
        return _mm512_permutexvar_epi8(Load(kChromaIndex), LoadPlanes(u, v));
    }
};

class Avx512VbmiBlock : public ByteProducts<Avx512Vbmi, 0> {
public:
    using ByteProducts::ByteProducts;

    template <bool kStream>
    void StoreRow(const Chroma& chroma, const unsigned char* y, unsigned char* argb) const {
        const Luma luma = ByteProducts::LoadLuma(y);
        const __m512i blue = Blue(luma, chroma);
        const __m512i green = Green(luma, chroma);
        const __m512i red =
            Pack(Avx512Vbmi::Add(luma.even, chroma.red), Avx512Vbmi::Add(luma.odd, chroma.red));
        for (int half = 0; half < 2; ++half) {
            const __m512i blueGreen = _mm512_permutex2var_epi8(blue, Load(kBlueGreenIndex[half]), green);
            for (int quarter = 2 * half; quarter < 2 * half + 2; ++quarter) {
                const __m512i pixels =
                    _mm512_maskz_permutex2var_epi8(kColourBytes, blueGreen, Load(kPixelIndex[quarter]), red);
                Avx512Vbmi::Store<kStream>(pixels, argb + 64 * quarter);
            }
        }
    }
};

}  // namespace

void ConvertAvx512Vbmi(const Matrix& matrix, const Picture& picture, Writing writing) {
    BlockLoop<Avx512VbmiBlock>::Convert(matrix, picture, writing);
}

}  // namespace velm::yuv
