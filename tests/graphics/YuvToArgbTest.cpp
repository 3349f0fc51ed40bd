#include "velm/YuvToArgb.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "GuardedRows.h"
#include "YuvKernels.h"

namespace velm {
namespace {

using test::Guard;
using test::GuardedRows;
using yuv::Kernel;
using yuv::Matrix;
using yuv::Picture;

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

/// A picture in memory of its own, chroma and luma random, and what must come of it.
class Sample {
public:
    struct Layout {
        std::size_t yStride;
        std::size_t uvStride;
        std::size_t argbStride;  // a multiple of 4
        Guard guard;
    };

    Sample(const Matrix& matrix, std::size_t width, std::size_t height, const Layout& layout,
           std::mt19937& random)
        : m_matrix(matrix),
          m_width(width),
          m_height(height),
          m_y(height, width, layout.yStride, layout.guard),
          m_u((height + 1) / 2, (width + 1) / 2, layout.uvStride, layout.guard),
          m_v((height + 1) / 2, (width + 1) / 2, layout.uvStride, layout.guard),
          m_argb(height, 4 * width, layout.argbStride, layout.guard) {
        Fill(m_y, height, width, random);
        Fill(m_u, (height + 1) / 2, (width + 1) / 2, random);
        Fill(m_v, (height + 1) / 2, (width + 1) / 2, random);
        m_expected.reserve(width * height);
        for (std::size_t row = 0; row < height; ++row) {
            for (std::size_t x = 0; x < width; ++x) {
                m_expected.push_back(
                    PixelOf(matrix, m_y.Row(row)[x], m_u.Row(row / 2)[x / 2], m_v.Row(row / 2)[x / 2]));
            }
        }
    }

    const Matrix& GetMatrix() const { return m_matrix; }

    Picture GetPicture() const {
        return {m_y.Row(0),
                m_u.Row(0),
                m_v.Row(0),
                static_cast<unsigned int>(m_y.Stride()),
                static_cast<unsigned int>(m_u.Stride()),
                static_cast<int>(m_width),
                static_cast<int>(m_height),
                m_argb.Row(0),
                static_cast<unsigned int>(m_argb.Stride())};
    }

    void ClearOutput() const {
        for (std::size_t row = 0; row < m_height; ++row) {
            std::fill_n(m_argb.Row(row), 4 * m_width, static_cast<unsigned char>(0xEE));
        }
    }

    /// Rows that are not what the formula gives, and bytes between neighbouring rows that have not stayed 0.
    std::size_t Faults() const {
        std::size_t faults = 0;
        for (std::size_t row = 0; row < m_height; ++row) {
            faults +=
                m_width != 0 && std::memcmp(m_argb.Row(row), &m_expected[row * m_width], 4 * m_width) != 0;
            const std::size_t gap = m_argb.Stride() - 4 * m_width;
            if (row + 1 < m_height && m_width != 0 && gap < test::Reservation::PageSize()) {
                faults += gap - static_cast<std::size_t>(
                                    std::count(m_argb.Row(row) + 4 * m_width, m_argb.Row(row + 1), '\0'));
            }
        }
        return faults;
    }

    std::string Description() const {
        return std::string("BT.") + m_matrix.name + ", " + std::to_string(m_width) + " x " +
               std::to_string(m_height) + ", strides " + std::to_string(m_y.Stride()) + ", " +
               std::to_string(m_u.Stride()) + ", " + std::to_string(m_argb.Stride());
    }

private:
    static void Fill(const GuardedRows& rows, std::size_t height, std::size_t width, std::mt19937& random) {
        for (std::size_t row = 0; row < height; ++row) {
            std::generate_n(rows.Row(row), width, [&] { return static_cast<unsigned char>(random()); });
        }
    }

    const Matrix& m_matrix;
    std::size_t m_width;
    std::size_t m_height;
    GuardedRows m_y;
    GuardedRows m_u;
    GuardedRows m_v;
    GuardedRows m_argb;
    std::vector<std::uint32_t> m_expected;
};

std::vector<const Kernel*> RunnableKernels() {
    std::vector<const Kernel*> kernels;
    for (const Kernel& kernel : yuv::GetKernels()) {
        if (yuv::FindKernel(kernel.name) != nullptr) {
            kernels.push_back(&kernel);
        }
    }
    return kernels;
}

// The thread sanitizer, which has nothing to find in one thread, takes every fifth V.
#if defined(__SANITIZE_THREAD__)
constexpr int kStep = 5;
#else
constexpr int kStep = 1;
#endif

/// All triples, as 256 frames of one V each: a block row for each U, in it 64 blocks of the four next Y.
TEST(YuvKernels, GiveTheFormulaForEveryTriple) {
    constexpr std::size_t kWidth = 128;
    constexpr std::size_t kHeight = 512;
    std::vector<unsigned char> y(kWidth * kHeight);
    std::vector<unsigned char> u(kWidth / 2 * kHeight / 2);
    for (std::size_t row = 0; row < kHeight; ++row) {
        for (std::size_t x = 0; x < kWidth; ++x) {
            y[row * kWidth + x] = static_cast<unsigned char>(x / 2 * 4 + row % 2 * 2 + x % 2);
            u[row / 2 * (kWidth / 2) + x / 2] = static_cast<unsigned char>(row / 2);
        }
    }
    std::vector<std::uint32_t> expected(y.size());
    std::vector<std::uint32_t> argb(y.size());
    for (const Matrix* const matrix : kMatrices) {
        for (int cr = 0; cr < 256; cr += kStep) {
            const std::vector<unsigned char> v(u.size(), static_cast<unsigned char>(cr));
            for (std::size_t i = 0; i < expected.size(); ++i) {
                expected[i] = PixelOf(*matrix, y[i], static_cast<int>(i / (2 * kWidth)), cr);
            }
            for (const Kernel* const kernel : RunnableKernels()) {
                std::ranges::fill(argb, 0xFFFFFFFF);
                yuv::Convert(*kernel, *matrix,
                             {y.data(), u.data(), v.data(), kWidth, kWidth / 2, kWidth, kHeight, argb.data(),
                              4 * kWidth});
                ASSERT_EQ(argb, expected) << kernel->name << ", BT." << matrix->name << ", V " << cr;
            }
        }
    }
}

/// Converts a sample with every kernel; false, and a failure is reported, when one of them is wrong.
bool ConvertsExactly(const Sample& sample) {
    for (const Kernel* const kernel : RunnableKernels()) {
        sample.ClearOutput();
        yuv::Convert(*kernel, sample.GetMatrix(), sample.GetPicture());
        EXPECT_EQ(sample.Faults(), 0U) << kernel->name << ", " << sample.Description();
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
                const Sample apart(matrix, width, height, {pages, pages, pages, guard}, random);
                ASSERT_TRUE(ConvertsExactly(apart));
                const Sample odd(matrix, width, height, {width | 1, (width / 2) | 1, 4 * width + 4, guard},
                                 random);
                ASSERT_TRUE(ConvertsExactly(odd));
            }
        }
    }
}

TEST(YuvKernels, ConvertPicturesOfRandomSizeAndAlignment) {
    const unsigned int seed = std::random_device{}();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 100; ++round) {
        const std::size_t width = 1 + below(700);
        const std::size_t height = 1 + below(20);
        const Sample sample(*kMatrices[below(2)], width, height,
                            {width + below(70), (width + 1) / 2 + below(70), 4 * (width + below(70)),
                             below(2) != 0 ? Guard::kBefore : Guard::kAfter},
                            random);
        ASSERT_TRUE(ConvertsExactly(sample));
    }
}

/// A picture this large is written past the caches where its rows begin at multiples of 64, and only there.
TEST(YuvKernels, WriteLargePicturesAsExactlyAsSmallOnes) {
    std::mt19937 random(2);
    const Sample aligned(yuv::kBt709, 2036, 1601, {2048, 1024, 8192, Guard::kBefore}, random);
    EXPECT_TRUE(ConvertsExactly(aligned));
    const Sample oddStride(yuv::kBt709, 2036, 1601, {2048, 1024, 8196, Guard::kBefore}, random);
    EXPECT_TRUE(ConvertsExactly(oddStride));
    const Sample oddAddress(yuv::kBt601, 2036, 1601, {2048, 1024, 8192, Guard::kAfter}, random);
    EXPECT_TRUE(ConvertsExactly(oddAddress));
}

TEST(YuvKernels, WrapNoStrideThatNeeds32Bits) {
    constexpr std::size_t kLarge = (std::size_t{1} << 31) + 4096 + 4;
    std::mt19937 random(3);
    const Sample sample(yuv::kBt601, 35, 3, {kLarge, kLarge, kLarge, Guard::kAfter}, random);
    EXPECT_TRUE(ConvertsExactly(sample));
}

TEST(YuvKernels, WriteToAddressesThatAreNotAMultipleOfFour) {
    constexpr int kWidth = 150;
    std::mt19937 random(4);
    const Sample sample(yuv::kBt709, kWidth, 2, {kWidth, kWidth / 2, 4 * kWidth, Guard::kAfter}, random);
    Picture picture = sample.GetPicture();
    std::vector<unsigned char> argb(4 * kWidth * 2 + 3);
    for (const Kernel* const kernel : RunnableKernels()) {
        for (std::size_t offset = 0; offset < 4; ++offset) {
            picture.argb = argb.data() + offset;
            yuv::Convert(*kernel, yuv::kBt709, picture);
            std::memcpy(sample.GetPicture().argb, picture.argb, argb.size() - 3);
            EXPECT_EQ(sample.Faults(), 0U) << kernel->name << ", offset " << offset;
        }
    }
}

TEST(YuvToArgb, GivesTheKnownColoursThroughBothExportedFunctions) {
    static const struct {
        unsigned char y, u, v;
        unsigned int bt601, bt709;
    } kCases[] = {
        {16, 128, 128, 0x00000000, 0x00000000},  {235, 128, 128, 0x00FDFDFD, 0x00FDFDFD},
        {128, 128, 128, 0x00818181, 0x00818181}, {81, 90, 240, 0x00FD0000, 0x00FF1700},
        {41, 240, 110, 0x000000FE, 0x00000DFF},  {255, 255, 255, 0x00FF7BFF, 0x00FFB5FF},
        {0, 0, 0, 0x00008700, 0x00004D00},
    };
    for (const auto& [y, u, v, bt601, bt709] : kCases) {
        unsigned char planes[] = {y, u, v};
        unsigned int pixel = 0xFFFFFFFF;
        Yuv420ToArgb8888_BT601(&planes[0], &planes[1], &planes[2], 1, 1, 1, 1, &pixel, 4);
        EXPECT_EQ(pixel, bt601);
        Yuv420ToArgb8888_BT709(&planes[0], &planes[1], &planes[2], 1, 1, 1, 1, &pixel, 4);
        EXPECT_EQ(pixel, bt709);
    }
}

TEST(YuvToArgb, RoundsAnOutputStrideDownToPixels) {
    unsigned char y[] = {16, 235, 16, 235};
    unsigned char chroma[] = {128};
    for (const unsigned int stride : {8U, 9U, 11U}) {
        unsigned int argb[4] = {1, 1, 1, 1};
        Yuv420ToArgb8888_BT601(y, chroma, chroma, 2, 1, 2, 2, argb, stride);
        EXPECT_EQ(argb[2], 0U) << stride;
        EXPECT_EQ(argb[3], 0x00FDFDFDU) << stride;
    }
}

TEST(YuvToArgb, TouchesNothingWithoutAPicture) {
    unsigned char byte = 128;
    unsigned int pixel = 1;
    static const struct {
        bool y, u, v, argb;
        int width, height;
    } kCases[] = {
        {true, true, true, true, 0, 1},   {true, true, true, true, 1, 0},  {true, true, true, true, -1, 1},
        {true, true, true, true, 1, -16}, {false, true, true, true, 1, 1}, {true, false, true, true, 1, 1},
        {true, true, false, true, 1, 1},  {true, true, true, false, 1, 1},
    };
    for (const auto& at : kCases) {
        Yuv420ToArgb8888_BT601(at.y ? &byte : nullptr, at.u ? &byte : nullptr, at.v ? &byte : nullptr, 1, 1,
                               at.width, at.height, at.argb ? &pixel : nullptr, 4);
        EXPECT_EQ(pixel, 1U);
    }
}

TEST(YuvKernels, FindsNoKernelThatIsUnknown) {
    for (const char* const name : {"", "Scalar", "sse", "scalar "}) {
        EXPECT_EQ(yuv::FindKernel(name), nullptr) << name;
    }
    EXPECT_EQ(yuv::FindKernel("scalar"), &yuv::GetKernels().back());
    EXPECT_EQ(yuv::FindKernel(yuv::BestKernel().name), &yuv::BestKernel());
}

TEST(CpuFeatures, TrustsNoExtensionWhoseRegistersTheSystemDoesNotSave) {
    using yuv::CpuLevel;
    constexpr unsigned int kOsxsaveAvx = 0x18000000;
    constexpr unsigned int kAvx2 = 0x20;
    constexpr unsigned int kAvx512 = 0x40010020;
    static const struct {
        yuv::CpuReport report;
        CpuLevel level;
    } kCases[] = {
        {{7, kOsxsaveAvx, kAvx512, 0x2, 0xE7}, CpuLevel::kAvx512Vbmi},
        {{7, kOsxsaveAvx, kAvx512, 0x0, 0xE7}, CpuLevel::kAvx512Bw},
        {{7, kOsxsaveAvx, 0x00010020, 0x2, 0xE7}, CpuLevel::kAvx2},  // AVX-512F without BW
        {{7, kOsxsaveAvx, kAvx512, 0x2, 0x07}, CpuLevel::kAvx2},     // no 512-bit state
        {{7, kOsxsaveAvx, kAvx512, 0x2, 0x67}, CpuLevel::kAvx2},     // part of it
        {{7, kOsxsaveAvx, kAvx2, 0x0, 0x07}, CpuLevel::kAvx2},
        {{7, kOsxsaveAvx, kAvx2, 0x0, 0x03}, CpuLevel::kBaseline},  // no 256-bit state
        {{7, 0x10000000, kAvx2, 0x0, 0x00}, CpuLevel::kBaseline},   // XGETBV not enabled
        {{1, kOsxsaveAvx, kAvx2, 0x0, 0x07}, CpuLevel::kBaseline},  // no leaf 7
    };
    for (const auto& at : kCases) {
        EXPECT_EQ(yuv::LevelOf(at.report), at.level) << "case " << &at - kCases;
    }
}

}  // namespace
}  // namespace velm
