// One pixel at a time, as the formula has it: what the other kernels are measured against.
#include "YuvRows.h"

namespace velm::yuv {
namespace {

unsigned char Clamp(int sum) {
    const int value = sum >> kFractionBits;
    return static_cast<unsigned char>(value < 0 ? 0 : value > 255 ? 255 : value);
}

}  // namespace

void ConvertScalar(const Matrix& matrix, const Rows& rows) {
    for (int row = 0; row < rows.count; ++row) {
        unsigned char* pixel = rows.argb[row];
        for (std::size_t x = 0; x < rows.width; ++x, pixel += 4) {
            const int y = matrix.luma * (rows.y[row][x] - kLumaOffset);
            const int u = rows.u[x / 2] - kChromaOffset;
            const int v = rows.v[x / 2] - kChromaOffset;
            pixel[0] = Clamp(y + matrix.uToBlue * u);
            pixel[1] = Clamp(y - matrix.uToGreen * u - matrix.vToGreen * v);
            pixel[2] = Clamp(y + matrix.vToRed * v);
            pixel[3] = 0;
        }
    }
}

}  // namespace velm::yuv
