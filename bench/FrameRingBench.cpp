// AudioFrameStream between threads, against the same ring over semaphores built from a mutex and a condition
// variable, and against a blocking queue.
#include <pthread.h>
#include <sched.h>

#include <array>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "Families.h"
#include "FrameRing.h"

#ifdef VELM_BENCH_READERWRITERQUEUE
#include <readerwriterqueue/readerwritercircularbuffer.h>
#endif

namespace velm::bench {
namespace {

class MutexSemaphore {
public:
    explicit MutexSemaphore(unsigned int count) : m_count(count) {}

    void Wait() {
        std::unique_lock lock(m_mutex);
        m_condition.wait(lock, [this] { return m_count != 0; });
        --m_count;
    }

    void Post() {
        const std::lock_guard lock(m_mutex);
        ++m_count;
        m_condition.notify_one();
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    unsigned int m_count;
};

#ifdef VELM_BENCH_READERWRITERQUEUE
class CircularBuffer {
public:
    void Push(short* frame) { m_queue.wait_enqueue(*reinterpret_cast<Frame*>(frame)); }
    void Take(short* frame) { m_queue.wait_dequeue(*reinterpret_cast<Frame*>(frame)); }

private:
    struct Frame {
        short samples[kFrameBytes / sizeof(short)];
    };
    moodycamel::BlockingReaderWriterCircularBuffer<Frame> m_queue{kFrames};
};
#endif

/// The processors that this process may use.
std::vector<int> Processors() {
    cpu_set_t set;
    sched_getaffinity(0, sizeof set, &set);
    std::vector<int> processors;
    for (int i = 0; i < CPU_SETSIZE; ++i) {
        if (CPU_ISSET(i, &set)) {
            processors.push_back(i);
        }
    }
    return processors;
}

/// `Place` pins threads round-robin to the first `cores` processors. The destructor restores the affinity of
/// the thread that created the object.
class Placement {
public:
    explicit Placement(unsigned int cores) : m_cores(cores) {
        sched_getaffinity(0, sizeof m_before, &m_before);
    }
    ~Placement() { sched_setaffinity(0, sizeof m_before, &m_before); }
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;

    void Place(unsigned int thread) const {
        static const std::vector<int> processors = Processors();
        cpu_set_t set;
        CPU_ZERO(&set);
        CPU_SET(processors[thread % m_cores % processors.size()], &set);
        pthread_setaffinity_np(pthread_self(), sizeof set, &set);
    }

private:
    unsigned int m_cores;
    cpu_set_t m_before;
};

template <typename Ring>
Contender Through(std::string name, unsigned int threads, unsigned int cores, std::size_t frames) {
    const auto ring = std::make_shared<Ring>();
    return {.name = std::move(name),
            .run =
                [ring, threads, cores](std::size_t times) {
                    const Placement placement(cores);
                    Pass(*ring, times, threads, [&](unsigned int thread) { placement.Place(thread); });
                },
            .batch = frames};
}

}  // namespace

void MeasureFrameRing(Suite& suite) {
    const std::size_t frames = suite.IsShort() ? 50 : 5000;
    const char* const kSemaphores = "three mutex/condition-variable semaphores";
    {
        std::vector<Peer> peers{{Through<RingOver<MutexSemaphore>>(kSemaphores, 2, 2, frames), 5.0}};
        const char* const kQueue = "moodycamel::BlockingReaderWriterCircularBuffer";
#ifdef VELM_BENCH_READERWRITERQUEUE
        peers.push_back({Through<CircularBuffer>(kQueue, 2, 2, frames), 3.0});
#else
        peers.push_back(Missing(kQueue, "libreaderwriterqueue-dev", 3.0));
#endif
        suite.Compare("AudioFrameStream", "frames of 1920 bytes, 4 slots, two threads on two cores",
                      Through<OurRing>("AudioFrameStream", 2, 2, frames), peers, Clock::kWall);
    }
    suite.Compare("AudioFrameStream", "the same on one core",
                  Through<OurRing>("AudioFrameStream", 2, 1, frames),
                  {{Through<RingOver<MutexSemaphore>>(kSemaphores, 2, 1, frames), 0.95}}, Clock::kWall);
    suite.Grow(
        "AudioFrameStream: a frame between threads", "threads", Growth::kNone, {1, 2, 4, 6, 8},
        [&](double size) -> std::vector<Contender> {
            const auto threads = static_cast<unsigned int>(size);
            const std::size_t count = frames / 5;
            return {Through<OurRing>("AudioFrameStream", threads, 2, count),
                    Through<RingOver<MutexSemaphore>>(kSemaphores, threads, 2, count)};
        },
        4, Clock::kWall);
}

}  // namespace velm::bench
