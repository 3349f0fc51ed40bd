#include <algorithm>
#include <random>
#include <vector>

#include "Command.h"
#include "SelfTests.h"
#include "velm/core/Tick.h"
#include "velm/YuvToArgb.h"

namespace velmdiag::report {
namespace {

constexpr double kFrameTime = 1e6 / 60;  // of a 60 Hz display, in microseconds
constexpr unsigned int kUntouched = 0xA5A5A5A5;

/// The formulas in YuvToArgb.h.
struct Matrix {
    decltype(&velm::Yuv420ToArgb8888_BT601) function;
    int rv, gu, gv, bu;
};

// Not constexpr: for Visual C++ the address of an imported function is not a constant expression.
const Matrix kMatrices[] = {
    {velm::Yuv420ToArgb8888_BT601, 102, 25, 52, 129},
    {velm::Yuv420ToArgb8888_BT709, 115, 14, 34, 135},
};

unsigned int Channel(int value) {
    return static_cast<unsigned int>(std::clamp(value >> 6, 0, 255));
}

unsigned int PixelOf(const Matrix& matrix, int luma, int u, int v) {
    const int y = 74 * (luma - 16);
    return Channel(y + matrix.rv * (v - 128)) << 16 |
           Channel(y - matrix.gu * (u - 128) - matrix.gv * (v - 128)) << 8 |
           Channel(y + matrix.bu * (u - 128));
}

std::size_t Area(int width, int height) {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

/// A picture of random bytes.
class Sample {
public:
    /// @param padding  pixels after each row of the output
    Sample(int width, int height, int padding)
        : m_width(width), m_height(height), m_pitch(width + padding), m_chromaWidth((width + 1) / 2) {
        const std::size_t lumaSize = Area(width, height);
        const std::size_t chromaSize = Area(m_chromaWidth, (height + 1) / 2);
        m_yuv.resize(lumaSize + 2 * chromaSize);
        std::mt19937 random(static_cast<unsigned int>(width));
        for (unsigned char& byte : m_yuv) {
            byte = static_cast<unsigned char>(random());
        }
        m_u = m_yuv.data() + lumaSize;
        m_v = m_u + chromaSize;
        m_argb.resize(Area(m_pitch, height), kUntouched);
    }

    void Convert(const Matrix& matrix) {
        matrix.function(m_yuv.data(), m_u, m_v, static_cast<unsigned int>(m_width),
                        static_cast<unsigned int>(m_chromaWidth), m_width, m_height, m_argb.data(),
                        static_cast<unsigned int>(m_pitch) * 4);
    }

    /// Counts pixels that differ from the formula, and overwritten ones between the rows.
    unsigned long long WrongPixels(const Matrix& matrix) const {
        unsigned long long wrong = 0;
        for (int row = 0; row < m_height; ++row) {
            const unsigned int* const pixels = m_argb.data() + row * m_pitch;
            const unsigned char* const luma = m_yuv.data() + row * m_width;
            const int chroma = row / 2 * m_chromaWidth;
            for (int x = 0; x < m_width; ++x) {
                wrong += pixels[x] != PixelOf(matrix, luma[x], m_u[chroma + x / 2], m_v[chroma + x / 2]);
            }
            wrong += static_cast<unsigned long long>(std::count_if(
                pixels + m_width, pixels + m_pitch, [](unsigned int pixel) { return pixel != kUntouched; }));
        }
        return wrong;
    }

    unsigned long long Pixels() const { return Area(m_width, m_height); }

    /// The median time of a conversion, in microseconds.
    double MedianTime() {
        std::vector<double> times(15);
        Convert(kMatrices[1]);  // maps the pages
        for (double& time : times) {
            const unsigned long long start = velm::Tick::Get().GetCount();
            Convert(kMatrices[1]);
            time = SecondsSince(start) * 1e6;
        }
        const auto middle = times.begin() + static_cast<long>(times.size() / 2);
        std::ranges::nth_element(times, middle);
        return *middle;
    }

private:
    int m_width;
    int m_height;
    int m_pitch;  // in pixels
    int m_chromaWidth;
    std::vector<unsigned char> m_yuv;
    std::vector<unsigned int> m_argb;
    unsigned char* m_u;
    unsigned char* m_v;
};

struct Size {
    int width;
    int height;
};

void AddTimes(SelfTest& test) {
    Plot plot{"time_by_size",
              "Time to convert a frame",
              "BT.709, one thread, median of 15; the grey bar is the time between two frames at 60 Hz",
              {},
              kFrameTime,
              "16.7 ms"};
    for (const Size& size :
         {Size{640, 360}, Size{1280, 720}, Size{1920, 1080}, Size{2560, 1440}, Size{3840, 2160}}) {
        const double time = Sample(size.width, size.height, 0).MedianTime();
        const std::string name = std::to_string(size.width) + "x" + std::to_string(size.height);
        AddTime(test.figures, "time_" + name, time);
        plot.bars.push_back({std::to_string(size.width) + " \u00d7 " + std::to_string(size.height), time,
                             Fixed(time / 1000, 2) + " ms = " + Fixed(100 * time / kFrameTime, 1) + " %",
                             ""});
    }
    test.plots.push_back(plot);
}

}  // namespace

std::string TestPictures(SelfTest& test) {
    unsigned long long pixels = 0;
    unsigned long long wrong = 0;
    for (const Size& size : {Size{1, 1}, Size{2, 2}, Size{17, 3}, Size{37, 23}, Size{130, 67}, Size{639, 361},
                             Size{1920, 1080}}) {
        Sample sample(size.width, size.height, 5);
        for (const Matrix& matrix : kMatrices) {
            sample.Convert(matrix);
            wrong += sample.WrongPixels(matrix);
            pixels += sample.Pixels();
        }
    }
    const std::string kernel = velm::GetYuvToArgbKernelName();
    test.figures.Add("kernel", kernel);
    AddCount(test.figures, "pixels_compared_with_the_formula", pixels);
    test.figures.Add("pixels_that_differ", static_cast<long long>(wrong));
    AddTimes(test);
    Require(wrong == 0, Grouped(wrong) + " of " + Grouped(pixels) + " pixels differ from the formula");
    return "Kernel " + kernel + ": " + Grouped(pixels) + " pixels exactly as the formula says; 1080p in " +
           Fixed(test.plots.front().bars[2].value / 1000, 2) + " ms.";
}

}  // namespace velmdiag::report
