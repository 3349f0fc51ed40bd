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
Contender Through(std::string name, std::size_t frames) {
    const auto ring = std::make_shared<Ring>();
    return {.name = std::move(name),
            .run = [ring](std::size_t times) { Pass(*ring, times, 2, [](unsigned int) {}); },
            .batch = frames};
}

}  // namespace

void MeasureFrameRing(Suite& suite) {
    suite.Compare(
        "AudioFrameStream", "frames of 1920 bytes, 4 slots, two threads, Windows",
        Through<OurRing>("AudioFrameStream", suite.IsShort() ? 50 : 20000),
        {{Through<RingOver<KernelSemaphore>>("three kernel semaphores", suite.IsShort() ? 20 : 500), 50.0}},
        Clock::kWall);
}

}  // namespace velm::bench
