#include "LoadStoreKernel.h"

#include <immintrin.h>

#include "graphics/yuv/YuvBlocks.h"

namespace velm::bench {
namespace {

class LoadStoreBlock {
public:
    static constexpr std::size_t kPixels = 64;

    explicit LoadStoreBlock(const yuv::Matrix&) {}

    __m512i LoadChroma(const unsigned char* u, const unsigned char* v) const {
        const __m256i us = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(u));
        const __m256i vs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(v));
        return _mm512_castsi256_si512(_mm256_xor_si256(us, vs));
    }

    template <bool kStream>
    void StoreRow(__m512i chroma, const unsigned char* y, unsigned char* argb) const {
        const __m512i bytes = _mm512_xor_si512(chroma, _mm512_loadu_si512(y));
        for (std::size_t at = 0; at < 4 * kPixels; at += 64) {
            if constexpr (kStream) {
                _mm512_stream_si512(reinterpret_cast<__m512i*>(argb + at), bytes);
            } else {
                _mm512_storeu_si512(argb + at, bytes);
            }
        }
    }
};

}  // namespace

void LoadAndStore(const yuv::Matrix& matrix, const yuv::Picture& picture, yuv::Writing writing) {
    yuv::BlockLoop<LoadStoreBlock>::Convert(matrix, picture, writing);
}

}  // namespace velm::bench
