#include "velm/YuvToArgb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <numeric>
#include <utility>
#include <vector>

#include "graphics/yuv/YuvKernels.h"
#include "GuardedRows.h"
#include "RandomSeed.h"

namespace velm {
namespace {

using test::Guard;
using test::GuardedRows;
using yuv::Kernel;
using yuv::Matrix;

const Matrix* const kMatrices[] = {&yuv::kBt601, &yuv::kBt709};

int ClampToByte(int value) {
    return std::clamp(value, 0, 255);
}

/// The formula, with the numbers of the two standards written out.
std::uint32_t PixelOf(const Matrix& matrix, int luma, int cb, int cr) {
    const int y = 74 * (luma - 16);
    const int u = cb - 128;
    const int v = cr - 128;
    const bool is601 = &matrix == &yuv::kBt601;
    const int red = ClampToByte((y + (is601 ? 102 : 115) * v) >> 6);
    const int green = ClampToByte((y - (is601 ? 25 : 14) * u - (is601 ? 52 : 34) * v) >> 6);
    const int blue = ClampToByte((y + (is601 ? 129 : 135) * u) >> 6);
    return static_cast<std::uint32_t>(red << 16 | green << 8 | blue);
}

std::vector<const Kernel*> RunnableKernels() {
    std::vector<const Kernel*> kernels;
    for (const Kernel& kernel : yuv::GetKernels()) {
        if (yuv::FindKernel(kernel.name) != nullptr) {
            kernels.push_back(&kernel);
        }
    }
    return kernels;
}

TEST(YuvKernels, GiveTheFormulaForEveryTriple) {
    std::vector<unsigned char> y(256);
    std::iota(y.begin(), y.end(), static_cast<unsigned char>(0));
    std::vector<std::uint32_t> expected(y.size());
    std::vector<std::uint32_t> argb(y.size());
    for (int chroma = 0; chroma < 2 << 16; ++chroma) {
        const Matrix& matrix = *kMatrices[chroma >> 16];
        const std::vector<unsigned char> u(64, static_cast<unsigned char>(chroma));
        const std::vector<unsigned char> v(64, static_cast<unsigned char>(chroma >> 8));
        std::ranges::transform(y, expected.begin(),
                               [&](int luma) { return PixelOf(matrix, luma, u[0], v[0]); });
        for (const Kernel* const kernel : RunnableKernels()) {
            std::ranges::fill(argb, 0xFFFFFFFF);
            yuv::Convert(*kernel, matrix, {y.data(), u.data(), v.data(), 128, 64, 128, 2, argb.data(), 512});
            ASSERT_EQ(argb, expected) << kernel->name << ", BT." << matrix.name << ", U and V " << chroma;
        }
    }
}

/// How a picture lies in memory of its own.
struct Layout {
    std::size_t width, height;
    std::size_t yStride, uvStride;
    std::size_t argbStride;  // a multiple of 4
    Guard guard;
    std::size_t odd = 0;  // what the address and the stride of the output are over a multiple of 4
};

/// Converts a picture of random content with every kernel; false, and a failure is reported, when a pixel is
/// not what the formula gives or a byte between neighbouring rows has not stayed 0.
bool ConvertsExactly(const Matrix& matrix, const Layout& at, std::mt19937& random) {
    const std::size_t chromaHeight = (at.height + 1) / 2;
    const std::size_t chromaWidth = (at.width + 1) / 2;
    const GuardedRows y(at.height, at.width, at.yStride, at.guard);
    const GuardedRows u(chromaHeight, chromaWidth, at.uvStride, at.guard);
    const GuardedRows v(chromaHeight, chromaWidth, at.uvStride, at.guard);
    const GuardedRows argb(at.height, 4 * at.width + at.odd, at.argbStride, at.guard);
    for (std::size_t row = 0; row < at.height; ++row) {
        std::generate_n(y.Row(row), at.width, std::ref(random));
        std::generate_n(u.Row(row / 2), chromaWidth, std::ref(random));
        std::generate_n(v.Row(row / 2), chromaWidth, std::ref(random));
    }
    std::vector<std::uint32_t> expected;
    for (std::size_t i = 0; i < at.width * at.height; ++i) {
        const std::size_t row = i / at.width;
        const std::size_t x = i % at.width;
        expected.push_back(PixelOf(matrix, y.Row(row)[x], u.Row(row / 2)[x / 2], v.Row(row / 2)[x / 2]));
    }
    const std::size_t size = 4 * at.width;
    const std::size_t gap = at.argbStride - size < test::Reservation::PageSize() ? at.argbStride - size : 0;
    for (const Kernel* const kernel : RunnableKernels()) {
        for (std::size_t row = 0; row < at.height; ++row) {
            std::fill_n(argb.Row(row) + at.odd, size, static_cast<unsigned char>(0xEE));
        }
        yuv::Convert(
            *kernel, matrix,
            {y.Row(0), u.Row(0), v.Row(0), static_cast<unsigned int>(at.yStride),
             static_cast<unsigned int>(at.uvStride), static_cast<int>(at.width), static_cast<int>(at.height),
             argb.Row(0) + at.odd, static_cast<unsigned int>(at.argbStride + at.odd)});
        for (std::size_t row = 0; row < at.height && size != 0; ++row) {
            const unsigned char* const begin = argb.Row(row) + at.odd;
            const bool last = row + 1 == at.height;
            EXPECT_TRUE(std::memcmp(begin, &expected[row * at.width], size) == 0 &&
                        (last || std::count(begin + size, begin + size + gap, 0) == std::ptrdiff_t(gap)))
                << kernel->name << ", BT." << matrix.name << ", " << at.width << " x " << at.height
                << ", strides " << at.yStride << ", " << at.uvStride << ", " << at.argbStride << ", odd "
                << at.odd << ", row " << row;
        }
    }
    return !testing::Test::HasFailure();
}

/// Each row of each plane in pages of its own, then with strides that put every row on another alignment.
TEST(YuvKernels, StayInsideThePictureForEverySmallSize) {
    const std::size_t pages = 2 * test::Reservation::PageSize();
    std::mt19937 random(1);
    for (std::size_t width = 0; width <= 67; ++width) {
        for (std::size_t height = 0; height <= 5; ++height) {
            for (const Guard guard : {Guard::kBefore, Guard::kAfter}) {
                const Matrix& matrix = *kMatrices[height % 2];
                const Layout apart = {width, height, pages, pages, pages, guard};
                const Layout odd = {width, height, width | 1, (width / 2) | 1, 4 * width + 4, guard};
                ASSERT_TRUE(ConvertsExactly(matrix, apart, random) && ConvertsExactly(matrix, odd, random));
            }
        }
    }
}

TEST(YuvKernels, ConvertPicturesOfRandomSizeAndAlignment) {
    std::mt19937 random = test::SeededRandom();
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 100; ++round) {
        const std::size_t width = 1 + below(700);
        const Guard guard = below(2) != 0 ? Guard::kBefore : Guard::kAfter;
        ASSERT_TRUE(ConvertsExactly(*kMatrices[below(2)],
                                    {width, 1 + below(20), width + below(70), (width + 1) / 2 + below(70),
                                     4 * (width + below(70)), guard, below(4)},
                                    random));
    }
}

/// A large picture is written past the caches where its rows begin at multiples of 64, and only there.
TEST(YuvKernels, WriteLargePicturesAndStridesAsExactlyAsSmallOnes) {
    constexpr std::size_t kLarge = (std::size_t{1} << 31) + 4096 + 4;  // needs 32 bits
    std::mt19937 random(2);
    for (const Layout& layout : {Layout{2036, 1601, 2048, 1024, 8192, Guard::kBefore},
                                 {2036, 1601, 2048, 1024, 8196, Guard::kBefore},
                                 {2036, 1601, 2048, 1024, 8192, Guard::kAfter},
                                 {35, 3, kLarge, kLarge, kLarge, Guard::kAfter}}) {
        EXPECT_TRUE(ConvertsExactly(yuv::kBt709, layout, random));
    }
}

TEST(YuvToArgb, GivesRedThroughBothExportedFunctionsAndNothingWithoutAPicture) {
    unsigned char planes[] = {81, 90, 240};
    unsigned int pixel = 1;
    const auto convert = [&](int missing, int width, int height) {
        const auto plane = [&](int number) { return number == missing ? nullptr : &planes[number]; };
        Yuv420ToArgb8888_BT601(plane(0), plane(1), plane(2), 1, 1, width, height,
                               missing == 3 ? nullptr : &pixel, 4);
        return pixel;
    };
    for (int missing = 0; missing < 4; ++missing) {
        EXPECT_EQ(convert(missing, 1, 1), 1U) << missing;
    }
    EXPECT_EQ(convert(-1, -1, 1), 1U);
    EXPECT_EQ(convert(-1, 1, -16), 1U);
    EXPECT_EQ(convert(-1, 1, 1), 0xFD0000U);
    Yuv420ToArgb8888_BT709(&planes[0], &planes[1], &planes[2], 1, 1, 1, 1, &pixel, 4);
    EXPECT_EQ(pixel, 0xFF1700U);
}

TEST(YuvKernels, FindsNoKernelThatIsUnknown) {
    EXPECT_EQ(yuv::FindKernel("Scalar"), nullptr);
    EXPECT_EQ(yuv::FindKernel("scalar"), &yuv::GetKernels().back());
    EXPECT_EQ(yuv::FindKernel(yuv::BestKernel().name), &yuv::BestKernel());
}

TEST(CpuFeatures, OneMissingPartRulesALevelOut) {
    using yuv::CpuLevel;
    constexpr unsigned int kLeaf1 = 0x18001000;   // OSXSAVE, AVX, FMA
    constexpr unsigned int kAvx2 = 0x00000128;    // AVX2, BMI1, BMI2
    constexpr unsigned int kAvx512 = 0xD0030128;  // and AVX-512 F, BW, CD, DQ, VL
    struct Case {
        yuv::CpuReport report;
        CpuLevel level;
    };
    std::vector<Case> cases = {
        {{7, kLeaf1, kAvx512, 0x2, 0xE7}, CpuLevel::kAvx512Vbmi},
        {{7, kLeaf1, kAvx512, 0x0, 0xE7}, CpuLevel::kAvx512Bw},
        {{7, kLeaf1, kAvx2, 0x2, 0xE7}, CpuLevel::kAvx2},
        {{7, kLeaf1, kAvx512, 0x2, 0x07}, CpuLevel::kAvx2},    // no 512-bit state
        {{7, kLeaf1, kAvx512, 0x2, 0x67}, CpuLevel::kAvx2},    // part of it
        {{7, kLeaf1, kAvx2, 0x0, 0x03}, CpuLevel::kBaseline},  // no 256-bit state
        {{1, kLeaf1, kAvx2, 0x0, 0x07}, CpuLevel::kBaseline},  // no leaf 7
    };
    for (const unsigned int bit : {12U, 27U, 28U}) {
        cases.push_back({{7, kLeaf1 & ~(1U << bit), kAvx512, 0x2, 0xE7}, CpuLevel::kBaseline});
    }
    for (const unsigned int bit : {3U, 5U, 8U, 16U, 17U, 28U, 30U, 31U}) {
        cases.push_back({{7, kLeaf1, kAvx512 & ~(1U << bit), 0x2, 0xE7},
                         bit < 16 ? CpuLevel::kBaseline : CpuLevel::kAvx2});
    }
    for (const auto& at : cases) {
        EXPECT_EQ(yuv::LevelOf(at.report), at.level) << "case " << &at - cases.data();
    }
}

}  // namespace
}  // namespace velm
