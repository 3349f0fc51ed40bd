// AVX-512 with BW. Each 128-bit lane gets 4 of every 16 pixels.
#include "graphics/yuv/Avx512Operations.h"

namespace velm::yuv {
namespace {

alignas(64) constexpr int kLumaPlaces[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};

// Indices of 16-bit words in 16 words of U followed by 16 of V: each lane gets 4 of both.
alignas(64) constexpr short kChromaPlaces[32] = {0, 4, 8,  12, 16, 20, 24, 28, 1, 5, 9,  13, 17, 21, 25, 29,
                                                 2, 6, 10, 14, 18, 22, 26, 30, 3, 7, 11, 15, 19, 23, 27, 31};

struct Avx512Bw : Avx512Operations<Avx512Bw> {
    static Register LoadLuma(const unsigned char* y) {
        return _mm512_permutexvar_epi32(_mm512_loadu_si512(kLumaPlaces), _mm512_loadu_si512(y));
    }

    static Register LoadChroma(const unsigned char* u, const unsigned char* v) {
        const __m512i byLane = _mm512_permutexvar_epi16(_mm512_loadu_si512(kChromaPlaces), LoadPlanes(u, v));
        return _mm512_unpacklo_epi8(byLane, _mm512_bsrli_epi128(byLane, 8));
    }
};

}  // namespace

void ConvertAvx512Bw(const Matrix& matrix, const Picture& picture, Writing writing) {
    BlockLoop<LaneBlock<Avx512Bw>>::Convert(matrix, picture, writing);
}

}  // namespace velm::yuv
