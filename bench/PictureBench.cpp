// The kernels of the picture conversion against libyuv, one thread, the frame converted over and over.
#include <libyuv.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>

#include "LoadStoreKernel.h"
#include "Turns.h"
#include "YuvKernels.h"

namespace velm::bench {
namespace {

struct Size {
    int width;
    int height;
};

constexpr Size kSizes[] = {{640, 360}, {1280, 720}, {1920, 1080}, {3840, 2160}};

struct Free {
    void operator()(unsigned char* block) const { std::free(block); }
};

using Block = std::unique_ptr<unsigned char[], Free>;

/// Random bytes at an address that suits every kernel.
Block AllocateRandom(std::size_t size) {
    constexpr std::size_t kPage = 4096;
    Block block(static_cast<unsigned char*>(std::aligned_alloc(kPage, (size + kPage - 1) / kPage * kPage)));
    std::mt19937 random(1);
    for (std::size_t i = 0; i < size; ++i) {
        block[i] = static_cast<unsigned char>(random());
    }
    return block;
}

class Frame {
public:
    explicit Frame(Size size)
        : m_size(size),
          m_y(AllocateRandom(Pixels())),
          m_u(AllocateRandom(Pixels() / 4)),
          m_v(AllocateRandom(Pixels() / 4)),
          m_argb(AllocateRandom(Pixels() * 4)) {}

    void Convert(const yuv::Kernel& kernel) const {
        const auto width = static_cast<unsigned int>(m_size.width);
        yuv::Convert(kernel, yuv::kBt601,
                     {m_y.get(), m_u.get(), m_v.get(), width, width / 2, m_size.width, m_size.height,
                      m_argb.get(), width * 4});
    }

    void ConvertByLibyuv() const {
        libyuv::I420ToARGB(m_y.get(), m_size.width, m_u.get(), m_size.width / 2, m_v.get(), m_size.width / 2,
                           m_argb.get(), m_size.width * 4, m_size.width, m_size.height);
    }

private:
    std::size_t Pixels() const {
        return static_cast<std::size_t>(m_size.width) * static_cast<std::size_t>(m_size.height);
    }

    Size m_size;
    Block m_y;
    Block m_u;
    Block m_v;
    Block m_argb;
};

/// libyuv with a choice of its paths, which is made before the time is taken.
Contender Libyuv(const std::string& name, int cpuFlags, const Frame& frame) {
    return {.name = name,
            .run = [&frame] { frame.ConvertByLibyuv(); },
            .prepare = [cpuFlags] { libyuv::MaskCpuFlags(cpuFlags); }};
}

void MeasureSize(Size size, int rounds) {
    const Frame frame(size);
    std::vector<Contender> contenders;
    const int withoutAvx512 = ~(libyuv::kCpuHasAVX512BW | libyuv::kCpuHasAVX512VL);
    contenders.push_back(Libyuv("libyuv avx2", withoutAvx512, frame));
    contenders.push_back(Libyuv("libyuv ssse3", withoutAvx512 & ~libyuv::kCpuHasAVX2, frame));
    contenders.push_back(Libyuv("libyuv best", -1, frame));
    const yuv::Kernel loadAndStore = {"load and store", yuv::CpuLevel::kAvx512Bw, LoadAndStore};
    if (loadAndStore.needs <= yuv::GetCpuLevel()) {
        contenders.push_back(
            {.name = loadAndStore.name, .run = [&frame, &loadAndStore] { frame.Convert(loadAndStore); }});
    }
    for (const yuv::Kernel& kernel : yuv::GetKernels()) {
        if (yuv::FindKernel(kernel.name) != nullptr) {
            contenders.push_back({.name = kernel.name, .run = [&frame, &kernel] { frame.Convert(kernel); }});
        }
    }

    const std::vector<Result> results = Measure(contenders, rounds);
    std::printf("\n%d x %d%18s%16s\n", size.width, size.height, "us per frame", "over libyuv");
    for (std::size_t i = 0; i < results.size(); ++i) {
        std::printf("  %-16s%10.1f%16.2f\n", contenders[i].name.c_str(), results[i].seconds * 1e6,
                    results[i].ratio);
    }
}

}  // namespace
}  // namespace velm::bench

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 101;
    if (rounds < 1) {
        std::fprintf(stderr, "usage: picture_bench [ROUNDS]\n");
        return 2;
    }
    std::printf(
        "Median of %d rounds, all contenders in turns; over libyuv: libyuv's AVX2 time over this one.\n",
        rounds);
    for (const velm::bench::Size size : velm::bench::kSizes) {
        velm::bench::MeasureSize(size, rounds);
    }
}
