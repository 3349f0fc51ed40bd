// AudioFrameStream between two threads, against the same ring over Windows kernel semaphores.
#include <windows.h>

#include <memory>

#include "Families.h"
#include "FrameRing.h"

namespace velm::bench {
namespace {

class KernelSemaphore {
public:
    explicit KernelSemaphore(unsigned int count)
        : m_handle(CreateSemaphoreW(nullptr, static_cast<LONG>(count), kFrames, nullptr)) {}
    ~KernelSemaphore() { CloseHandle(m_handle); }
    KernelSemaphore(const KernelSemaphore&) = delete;
    KernelSemaphore& operator=(const KernelSemaphore&) = delete;

    void Wait() { WaitForSingleObject(m_handle, INFINITE); }
    void Post() { ReleaseSemaphore(m_handle, 1, nullptr); }

private:
    HANDLE m_handle;
};

template <typename Ring>
RingContender MakeRingContender(std::string name, double required = 0) {
    const auto ring = std::make_shared<Ring>();
    return {.name = std::move(name),
            .pass =
                [ring](std::size_t frames) {
                    return MeasurePass(
                        *ring, frames, [](unsigned int) {}, [] { return 0; });
                },
            .required = required};
}

}  // namespace

void MeasureFrameRing(Suite& suite) {
    const std::vector<RingContender> rings{
        MakeRingContender<OurRing>("AudioFrameStream"),
        MakeRingContender<RingOver<KernelSemaphore>>("three kernel semaphores", 10.0)};
    const auto runs = MeasureInterleaved(rings, suite.IsShort() ? 20 : 500, suite.IsShort());
    RecordTimes(suite, "frames of 1920 bytes, 4 slots, two threads, Windows", rings, runs);
}

}  // namespace velm::bench
