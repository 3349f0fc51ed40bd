#include "LoadStoreRows.h"

#include <immintrin.h>

namespace velm::bench {
namespace {

template <bool kStream>
void StoreRow(__m512i chroma, const unsigned char* y, unsigned char* argb) {
    const __m512i bytes = _mm512_xor_si512(chroma, _mm512_loadu_si512(y));
    for (std::size_t at = 0; at < 256; at += 64) {
        if constexpr (kStream) {
            _mm512_stream_si512(reinterpret_cast<__m512i*>(argb + at), bytes);
        } else {
            _mm512_storeu_si512(argb + at, bytes);
        }
    }
}

template <bool kStream>
void MoveRows(yuv::Rows rows) {
    for (std::size_t x = 0; x + 64 <= rows.width; x += 64) {
        const __m256i u = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows.u + x / 2));
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows.v + x / 2));
        const __m512i chroma = _mm512_castsi256_si512(_mm256_xor_si256(u, v));
        StoreRow<kStream>(chroma, rows.y[0] + x, rows.argb[0] + 4 * x);
        if (rows.count == 2) {
            StoreRow<kStream>(chroma, rows.y[1] + x, rows.argb[1] + 4 * x);
        }
    }
}

}  // namespace

void LoadAndStoreRows(const yuv::Matrix&, const yuv::Rows& rows) {
    if (rows.stream) {
        MoveRows<true>(rows);
    } else {
        MoveRows<false>(rows);
    }
}

}  // namespace velm::bench
