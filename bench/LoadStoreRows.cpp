#include "LoadStoreRows.h"

#include <immintrin.h>

namespace velm::bench {

void LoadAndStoreRows(const yuv::Matrix&, const yuv::Rows& rows) {
    for (std::size_t x = 0; x + 64 <= rows.width; x += 64) {
        const __m256i u = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows.u + x / 2));
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows.v + x / 2));
        const __m512i chroma = _mm512_castsi256_si512(_mm256_xor_si256(u, v));
        for (int row = 0; row < rows.count; ++row) {
            const __m512i sum = _mm512_xor_si512(chroma, _mm512_loadu_si512(rows.y[row] + x));
            for (std::size_t store = 0; store < 4; ++store) {
                unsigned char* const argb = rows.argb[row] + 4 * x + 64 * store;
                if (rows.stream) {
                    _mm512_stream_si512(reinterpret_cast<__m512i*>(argb), sum);
                } else {
                    _mm512_storeu_si512(argb, sum);
                }
            }
        }
    }
}

}  // namespace velm::bench
