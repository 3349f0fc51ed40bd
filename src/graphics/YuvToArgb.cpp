#include "velm/YuvToArgb.h"

#include "graphics/yuv/YuvKernels.h"

namespace velm {
namespace {

void Convert(const yuv::Matrix& matrix, const yuv::Picture& picture) {
    yuv::Convert(yuv::BestKernel(), matrix, picture);
}

}  // namespace

void Yuv420ToArgb8888_BT601(unsigned char* yPlane, unsigned char* uPlane, unsigned char* vPlane,
                            unsigned int yStride, unsigned int uvStride, int width, int height,
                            unsigned int* argb, unsigned int argbStride) {
    Convert(yuv::kBt601, {yPlane, uPlane, vPlane, yStride, uvStride, width, height, argb, argbStride});
}

void Yuv420ToArgb8888_BT709(unsigned char* yPlane, unsigned char* uPlane, unsigned char* vPlane,
                            unsigned int yStride, unsigned int uvStride, int width, int height,
                            unsigned int* argb, unsigned int argbStride) {
    Convert(yuv::kBt709, {yPlane, uPlane, vPlane, yStride, uvStride, width, height, argb, argbStride});
}

const char* GetYuvToArgbKernelName() {
    return yuv::BestKernel().name;
}

}  // namespace velm
