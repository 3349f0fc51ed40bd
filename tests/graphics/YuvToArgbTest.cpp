#include "velm/YuvToArgb.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "GuardedPicture.h"
#include "Random.h"

namespace velm::yuv_to_argb_test {

using test::Guard;
using test::PictureLayout;

const yuv::Matrix* const kMatrices[] = {&yuv::kBt601, &yuv::kBt709};

TEST(YuvKernels, MatchTheFormulaForEveryTriple) {
    std::vector<unsigned char> y(256);
    std::iota(y.begin(), y.end(), static_cast<unsigned char>(0));
    std::vector<std::uint32_t> expected(y.size());
    std::vector<std::uint32_t> argb(y.size());
    const std::vector<yuv::Kernel> kernels = test::RunnableKernels();
    for (int chroma = 0; chroma < 2 << 16; chroma += VELM_TEST_SLOWDOWN) {
        const yuv::Matrix& matrix = *kMatrices[chroma >> 16];
        const std::vector<unsigned char> u(64, static_cast<unsigned char>(chroma));
        const std::vector<unsigned char> v(64, static_cast<unsigned char>(chroma >> 8));
        std::ranges::transform(y, expected.begin(),
                               [&](int luma) { return test::PixelOf(matrix, luma, u[0], v[0]); });
        for (const yuv::Kernel& kernel : kernels) {
            std::ranges::fill(argb, 0xFFFFFFFF);
            yuv::Convert(kernel, matrix, {y.data(), u.data(), v.data(), 128, 64, 128, 2, argb.data(), 512});
            ASSERT_EQ(argb, expected) << kernel.name << ", BT." << matrix.name << ", U and V " << chroma;
        }
    }
}

/// Converts pictures of random content with every kernel.
void ExpectExact(const yuv::Matrix& matrix, const PictureLayout& layout, std::mt19937& random) {
    test::GuardedPicture picture(layout, std::ref(random));
    for (const yuv::Kernel& kernel : test::RunnableKernels()) {
        ASSERT_EQ(picture.FirstWrongRow(kernel, matrix), "");
    }
}

/// Each row of each plane in pages of its own, then with strides that change the alignment from row to row.
/// 67 pixels are a whole block and a remainder for each kernel.
TEST(YuvKernels, StayInsideSmallPictures) {
    constexpr std::size_t kApart = 2 * test::kPageSize;
    std::mt19937 random = test::SeededRandom();
    for (std::size_t width = 1; width <= 67; ++width) {
        for (std::size_t height = 1; height <= 3; ++height) {
            for (const Guard guard : {Guard::kBefore, Guard::kAfter}) {
                const yuv::Matrix& matrix = *kMatrices[height % 2];
                ASSERT_NO_FATAL_FAILURE(
                    ExpectExact(matrix, {width, height, kApart, kApart, kApart, guard}, random));
                ExpectExact(matrix, {width, height, width | 1, width / 2 | 1, 4 * width + 4, guard, height},
                            random);
            }
        }
    }
}

/// Large pictures are written past the caches, but only if their rows start at multiples of 64.
TEST(YuvKernels, ConvertLargePicturesExactly) {
    constexpr std::size_t kLarge = (std::size_t{1} << 31) + 4096 + 4;  // needs 32 bits
    std::mt19937 random(2);
    for (const PictureLayout& layout : {PictureLayout{2036, 1601, 2048, 1024, 8192, Guard::kBefore},
                                        {2036, 1601, 2048, 1024, 8196, Guard::kBefore},
                                        {2036, 1601, 2048, 1024, 8192, Guard::kAfter},
                                        {700, 19, 723, 401, 2860, Guard::kAfter, 1},
                                        {35, 3, kLarge, kLarge, kLarge, Guard::kAfter}}) {
        ExpectExact(yuv::kBt709, layout, random);
    }
}

TEST(YuvToArgb, IgnoresMissingPlanesAndSizes) {
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

TEST(YuvKernels, AreFoundByFullName) {
    EXPECT_EQ(yuv::FindKernel("Scalar"), nullptr);
    EXPECT_EQ(yuv::FindKernel("scalar"), &yuv::GetKernels().back());
    EXPECT_EQ(yuv::FindKernel(GetYuvToArgbKernelName()), &yuv::BestKernel());
}

TEST(YuvKernels, NewKernelsThatAreSlowerAreNotChosen) {
    constexpr unsigned int kIntel = 0x756E6547;
    constexpr unsigned int kAmd = 0x68747541;
    constexpr unsigned int kOther = 0x746E6543;
    constexpr unsigned int kLeaf1 = 0x18001000;
    constexpr unsigned int kAvx512 = 0xD0030128;
    const struct {
        const char* kernel;
        yuv::CpuReport report;
    } cases[] = {
        {"avx512vbmi", {7, kLeaf1, kAvx512, 0x2, 0xE7, kAmd}},
        {"avx512bw", {7, kLeaf1, kAvx512, 0x2, 0xE7, kIntel}},
        {"avx512bw", {7, kLeaf1, kAvx512, 0x2, 0xE7, kOther}},
        {"avx512bw", {7, kLeaf1, kAvx512, 0x0, 0xE7, kAmd}},
        {"avx2", {7, kLeaf1, 0x128, 0x0, 0x07, kAmd}},
        {"avx2", {7, kLeaf1, kAvx512, 0x2, 0x07, kIntel}},  // no 512-bit state
        {"sse2", {1, 0, 0, 0, 0, kAmd}},
    };
    for (const auto& at : cases) {
        EXPECT_STREQ(yuv::ChooseKernel(at.report).name, at.kernel) << "case " << &at - cases;
    }
}

TEST(CpuFeatures, EveryMissingFeatureLowersTheLevel) {
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

}  // namespace velm::yuv_to_argb_test
