// The formula, one pixel at a time: the reference for the other kernels.
#include <cstddef>

#include "graphics/yuv/YuvPicture.h"

namespace velm::yuv {
namespace {

unsigned char Clamp(int sum) {
    const int value = sum >> kFractionBits;
    return static_cast<unsigned char>(value < 0 ? 0 : value > 255 ? 255 : value);
}

}  // namespace

void ConvertScalar(const Matrix& matrix, const Picture& picture, Writing) {
    const auto height = static_cast<std::size_t>(picture.height);
    const auto width = static_cast<std::size_t>(picture.width);
    for (std::size_t row = 0; row < height; ++row) {
        const unsigned char* const yRow = picture.yPlane + row * picture.yStride;
        const unsigned char* const uRow = picture.uPlane + row / 2 * picture.uvStride;
        const unsigned char* const vRow = picture.vPlane + row / 2 * picture.uvStride;
        unsigned char* pixel = static_cast<unsigned char*>(picture.argb) + row * picture.argbStride;
        for (std::size_t x = 0; x < width; ++x, pixel += 4) {
            const int y = matrix.luma * (yRow[x] - kLumaOffset);
            const int u = uRow[x / 2] - kChromaOffset;
            const int v = vRow[x / 2] - kChromaOffset;
            pixel[0] = Clamp(y + matrix.uToBlue * u);
            pixel[1] = Clamp(y - matrix.uToGreen * u - matrix.vToGreen * v);
            pixel[2] = Clamp(y + matrix.vToRed * v);
            pixel[3] = 0;
        }
    }
}

}  // namespace velm::yuv
