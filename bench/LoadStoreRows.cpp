#include "LoadStoreRows.h"

#include <immintrin.h>

namespace velm::bench {

void LoadAndStoreRows(const yuv::Matrix&, const yuv::Rows& rows) {
    for (std::size_t x = 0; x + 64 <= rows.width; x += 64) {
        // Masked, so that the other half of the register is zero.
        const __m512i u = _mm512_maskz_loadu_epi64(0x0F, rows.u + x / 2);
        const __m512i v = _mm512_maskz_loadu_epi64(0x0F, rows.v + x / 2);
        const __m512i chroma = _mm512_xor_si512(u, v);
        for (int row = 0; row < rows.count; ++row) {
            const __m512i sum = _mm512_xor_si512(chroma, _mm512_loadu_si512(rows.y[row] + x));
            for (std::size_t store = 0; store < 4; ++store) {
                _mm512_storeu_si512(rows.argb[row] + 4 * x + 64 * store, sum);
            }
        }
    }
}

}  // namespace velm::bench
