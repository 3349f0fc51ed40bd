// Picture conversion against libyuv, swscale and the limit set by memory: one thread converts the same frame
// over and over.
#include <cmath>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "Families.h"
#include "graphics/yuv/YuvKernels.h"
#include "LoadStoreKernel.h"
#include "velm/YuvToArgb.h"

#ifdef VELM_BENCH_YUV
#include <libyuv.h>
#endif
#ifdef VELM_BENCH_SWSCALE
extern "C" {
#include <libswscale/swscale.h>
}
#endif

namespace velm::bench {
namespace {

struct Size {
    int width;
    int height;

    std::string Name() const { return std::to_string(width) + " x " + std::to_string(height); }
};

constexpr Size kSizes[] = {{640, 360}, {1280, 720}, {1920, 1080}, {3840, 2160}};

// Where memory is the bottleneck, no kernel is 1.5 times as fast as libyuv; elsewhere, none comes close to
// the limit set by memory.
constexpr double kOverLibyuv = 1.5;
constexpr double kShareOfLimit = 0.85;

struct Free {
    void operator()(unsigned char* block) const { std::free(block); }
};

using Block = std::unique_ptr<unsigned char[], Free>;

/// Random bytes, page-aligned.
Block AllocateRandom(std::size_t size) {
    constexpr std::size_t kPage = 4096;
    Block block(static_cast<unsigned char*>(std::aligned_alloc(kPage, (size + kPage - 1) / kPage * kPage)));
    std::minstd_rand random(1);
    for (std::size_t i = 0; i < size; ++i) {
        block[i] = static_cast<unsigned char>(random() >> 8);
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

    const Size& GetSize() const { return m_size; }

    void Convert() const {
        const auto width = static_cast<unsigned int>(m_size.width);
        Yuv420ToArgb8888_BT601(m_y.get(), m_u.get(), m_v.get(), width, width / 2, m_size.width, m_size.height,
                               reinterpret_cast<unsigned int*>(m_argb.get()), width * 4);
    }

    void ConvertBy(const yuv::Kernel& kernel) const {
        const auto width = static_cast<unsigned int>(m_size.width);
        yuv::Convert(kernel, yuv::kBt601,
                     {m_y.get(), m_u.get(), m_v.get(), width, width / 2, m_size.width, m_size.height,
                      m_argb.get(), width * 4});
    }

#ifdef VELM_BENCH_YUV
    void ConvertByLibyuv() const {
        libyuv::I420ToARGB(m_y.get(), m_size.width, m_u.get(), m_size.width / 2, m_v.get(), m_size.width / 2,
                           m_argb.get(), m_size.width * 4, m_size.width, m_size.height);
    }
#endif

#ifdef VELM_BENCH_SWSCALE
    void ConvertBySwscale(SwsContext* context) const {
        const unsigned char* const planes[] = {m_y.get(), m_u.get(), m_v.get()};
        const int strides[] = {m_size.width, m_size.width / 2, m_size.width / 2};
        unsigned char* const out[] = {m_argb.get()};
        const int outStrides[] = {m_size.width * 4};
        sws_scale(context, planes, strides, 0, m_size.height, out, outStrides);
    }
#endif

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

using SharedFrame = std::shared_ptr<const Frame>;

Contender Ours(const SharedFrame& frame) {
    return Repeat("Yuv420ToArgb8888_BT601", [frame] { frame->Convert(); });
}

enum class Level { kSsse3, kAvx2, kBest };

/// libyuv limited to one of its code paths, which is selected before the timing starts.
Peer Libyuv(const SharedFrame& frame, Level level, double required) {
    const std::string name = level == Level::kBest   ? "libyuv"
                             : level == Level::kAvx2 ? "libyuv, AVX2"
                                                     : "libyuv, SSSE3";
#ifdef VELM_BENCH_YUV
    int flags = -1;
    if (level != Level::kBest) {
        flags &= ~(libyuv::kCpuHasAVX512BW | libyuv::kCpuHasAVX512VL);
    }
    if (level == Level::kSsse3) {
        flags &= ~libyuv::kCpuHasAVX2;
    }
    Contender contender = Repeat(name, [frame] { frame->ConvertByLibyuv(); });
    contender.prepare = [flags] { libyuv::MaskCpuFlags(flags); };
    return {std::move(contender), required};
#else
    (void)frame;
    return Missing(name, "libyuv-dev", required);
#endif
}

Peer Swscale(const SharedFrame& frame) {
    const std::string name = "swscale";
#ifdef VELM_BENCH_SWSCALE
    const Size& size = frame->GetSize();
    const std::shared_ptr<SwsContext> context(
        sws_getContext(size.width, size.height, AV_PIX_FMT_YUV420P, size.width, size.height, AV_PIX_FMT_BGR0,
                       SWS_POINT, nullptr, nullptr, nullptr),
        sws_freeContext);
    return {Repeat(name, [frame, context] { frame->ConvertBySwscale(context.get()); })};
#else
    (void)frame;
    return Missing(name, "libswscale-dev", 0);
#endif
}

const char* const kLimitName = "loads and stores alone";

Peer LoadStoreLimit(const SharedFrame& frame) {
    static constexpr yuv::Kernel kLoadAndStore = {"load and store", yuv::CpuLevel::kAvx512Bw, LoadAndStore};
    if (kLoadAndStore.needs > yuv::GetCpuLevel()) {
        Peer missing = Missing(kLimitName, "a processor with AVX-512");
        missing.isLimit = true;
        return missing;
    }
    return LimitOf(Repeat(kLimitName, [frame] { frame->ConvertBy(kLoadAndStore); }));
}

/// The exported conversion against other libraries, our other kernels and the limit set by memory.
void MeasureConversion(Suite& suite, const SharedFrame& frame) {
    std::vector<Peer> peers{Libyuv(frame, Level::kBest, 1.0), Swscale(frame), LoadStoreLimit(frame)};
    for (const yuv::Kernel& kernel : yuv::GetKernels()) {
        const bool canRun = yuv::FindKernel(kernel.name) != nullptr;
        if (canRun && &kernel != &yuv::BestKernel() && std::string_view(kernel.name) != "scalar") {
            // If another kernel is faster than the one chosen, the choice is wrong.
            peers.push_back(
                {Repeat(std::string("kernel ") + kernel.name, [frame, &kernel] { frame->ConvertBy(kernel); }),
                 0.93});
        }
    }
    const std::string size = frame->GetSize().Name();
    const Ratios ratios = suite.Compare("Pictures", size, Ours(frame), peers);
    suite.RequireOneOf("Pictures, " + size, ratios, {{"libyuv", kOverLibyuv}, {kLimitName, kShareOfLimit}});
}

/// Every kernel that this processor can run, against libyuv's AVX2 path; the SSE2 one also against its SSSE3
/// path. Where computation is the bottleneck, a kernel must not be slower than libyuv's path for the same
/// instructions.
void MeasureKernels(Suite& suite, const SharedFrame& frame) {
    for (const char* const name : {"sse2", "avx2", "avx512bw", "avx512vbmi"}) {
        const yuv::Kernel* const kernel = yuv::FindKernel(name);
        if (kernel == nullptr) {
            continue;
        }
        const bool isSse2 = std::string_view(name) == "sse2";
        const double required = frame->GetSize().width <= 1280 ? 1.0 : 0;
        std::vector<Peer> peers{Libyuv(frame, Level::kAvx2, isSse2 ? 0 : required)};
        if (isSse2) {
            peers.push_back(Libyuv(frame, Level::kSsse3, required));
        }
        suite.Compare("Pictures", frame->GetSize().Name() + ", kernel " + name,
                      Repeat(name, [frame, kernel] { frame->ConvertBy(*kernel); }), peers);
    }
}

/// The pixel counts of 16:9 pictures with these widths.
std::vector<double> PixelsOf(std::vector<double> widths) {
    for (double& width : widths) {
        width *= width * 9 / 16;
    }
    return widths;
}

}  // namespace

void MeasurePictures(Suite& suite) {
    for (const Size& size : kSizes) {
        const auto frame = std::make_shared<const Frame>(size);
        MeasureConversion(suite, frame);
        MeasureKernels(suite, frame);
    }
    suite.MeasureCurve(
        "Pictures: a conversion", "pixels", Growth::kWithSize,
        PixelsOf({160, 320, 640, 1280, 1920, 2560, 3840, 5120, 7680}),
        [](double pixels) -> std::vector<Contender> {
            const int sixteenth = static_cast<int>(std::lround(std::sqrt(pixels / (16 * 9))));
            const auto frame = std::make_shared<const Frame>(Size{16 * sixteenth, 9 * sixteenth});
            std::vector<Contender> contenders{Ours(frame)};
            for (const Peer& peer : {Libyuv(frame, Level::kBest, 0), LoadStoreLimit(frame)}) {
                if (peer.contender.run != nullptr) {
                    contenders.push_back(peer.contender);
                }
            }
            return contenders;
        },
        1e5);
}

}  // namespace velm::bench
