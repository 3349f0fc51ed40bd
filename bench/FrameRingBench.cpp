// AudioFrameStream between threads, against the same ring over semaphores built from a mutex and a condition
// variable, and against a blocking queue.
#include <emmintrin.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

#include <array>
#include <condition_variable>
#include <cstring>
#include <ctime>
#include <memory>
#include <mutex>

#include "Families.h"
#include "FrameRing.h"

#ifdef VELM_BENCH_READERWRITERQUEUE
#include <readerwriterqueue/readerwritercircularbuffer.h>
#endif

namespace velm::bench {
namespace {

constexpr const char* kSemaphores = "three mutex/condition-variable semaphores";

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

/// The least that passing a frame takes while both threads run: the two copies, and an index for each side.
class SpinningRing {
public:
    void Push(short* frame) {
        const unsigned int at = m_pushed.load(std::memory_order_relaxed);
        while (at - m_taken.load(std::memory_order_acquire) == kFrames) {
            _mm_pause();
        }
        std::memcpy(m_frames[at % kFrames], frame, kFrameBytes);
        m_pushed.store(at + 1, std::memory_order_release);
    }

    void Take(short* frame) {
        const unsigned int at = m_taken.load(std::memory_order_relaxed);
        while (m_pushed.load(std::memory_order_acquire) == at) {
            _mm_pause();
        }
        std::memcpy(frame, m_frames[at % kFrames], kFrameBytes);
        m_taken.store(at + 1, std::memory_order_release);
    }

private:
    alignas(64) unsigned char m_frames[kFrames][kFrameBytes];
    alignas(64) std::atomic<unsigned int> m_pushed{0};
    alignas(64) std::atomic<unsigned int> m_taken{0};
};

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

template <typename Ring>
RingContender MakeRingContender(std::string name, unsigned int cores, double required = 0) {
    const auto ring = std::make_shared<Ring>();
    const auto countSleeps = [] {
        rusage usage{};
        getrusage(RUSAGE_THREAD, &usage);
        return static_cast<double>(usage.ru_nvcsw);
    };
    return {.name = std::move(name),
            .pass =
                [=](std::size_t frames) {
                    const Placement placement(cores);
                    return MeasurePass(
                        *ring, frames, [&](unsigned int thread) { placement.Place(thread); }, countSleeps);
                },
            .required = required};
}

/// The percentage of frames that pass while neither thread sleeps. Each sleep counts against as many frames
/// as the ring holds.
double PercentInStep(const Cost& cost) {
    return 100 * std::max(0.0, 1 - kFrames * cost.sleeps);
}

void RecordSteps(Suite& suite, const std::vector<RingContender>& rings,
                 const std::vector<std::vector<Cost>>& runs) {
    for (std::size_t i = 0; i < rings.size(); ++i) {
        Runs shares;
        shares.missingPackage = rings[i].missingPackage;
        for (const std::vector<Cost>& run : runs) {
            if (rings[i].pass) {
                shares.figures.push_back(PercentInStep(run[i]));
            }
        }
        suite.RecordRuns("AudioFrameStream", "the same: frames passed in step", i == 0 ? "" : rings[i].name,
                         shares, Bound::kAtLeast, i == 0 ? 90 : 0, "%");
    }
}

/// Requires that we take a third of the time of a ring whose threads sleep. In some runs they stay in step by
/// chance; then a frame costs so little more than spinning alone that there is no room for such a factor.
void RequireAThirdWhileAsleep(Suite& suite, const RingContender& ring, std::size_t index,
                              const std::vector<std::vector<Cost>>& runs) {
    constexpr double kMostlyAsleep = 5;
    for (const std::vector<Cost>& run : runs) {
        const bool sleeps = ring.pass && PercentInStep(run[index]) < kMostlyAsleep;
        suite.Require("AudioFrameStream, frames of 1920 bytes | " + ring.name +
                          ", asleep: at least 3, measured " +
                          std::to_string(run[index].seconds / run[0].seconds),
                      !sleeps || run[index].seconds >= 3 * run[0].seconds);
    }
}

void MeasureThroughput(Suite& suite) {
    const std::size_t frames = suite.IsShort() ? 50 : 2000;
    const char* const kQueue = "moodycamel::BlockingReaderWriterCircularBuffer";
    RingContender spinning = MakeRingContender<SpinningRing>("spinning alone", 2);
    spinning.isLimit = true;
    std::vector<RingContender> rings{MakeRingContender<OurRing>("AudioFrameStream", 2), spinning,
                                     MakeRingContender<RingOver<MutexSemaphore>>(kSemaphores, 2, 5.0),
#ifdef VELM_BENCH_READERWRITERQUEUE
                                     MakeRingContender<CircularBuffer>(kQueue, 2, 1.0)};
#else
                                     {kQueue, nullptr, 1.0, "libreaderwriterqueue-dev"}};
#endif
    auto runs = MeasureInterleaved(rings, frames, suite.IsShort());
    RecordTimes(suite, "frames of 1920 bytes, 4 slots, two threads on two cores", rings, runs);
    RecordSteps(suite, rings, runs);
    RequireAThirdWhileAsleep(suite, rings.back(), rings.size() - 1, runs);

    rings = {MakeRingContender<OurRing>("AudioFrameStream", 1),
             MakeRingContender<RingOver<MutexSemaphore>>(kSemaphores, 1, 0.95)};
    runs = MeasureInterleaved(rings, frames, suite.IsShort());
    RecordTimes(suite, "the same on one core", rings, runs);
}

/// The two ends of a ring, for passing frames at a fixed rate.
struct Ends {
    std::function<void(short*)> push;
    std::function<void(short*)> take;
};

template <typename Ring>
Ends MakeEnds() {
    const auto ring = std::make_shared<Ring>();
    return {[ring](short* frame) { ring->Push(frame); }, [ring](short* frame) { ring->Take(frame); }};
}

/// The processor time of the calling thread in seconds.
double ProcessorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void PushAtRate(const Ends& ring, std::size_t frames, SteadyClock::time_point first,
                std::chrono::nanoseconds period) {
    short frame[kFrameBytes / sizeof(short)] = {};
    for (std::size_t i = 0; i < frames; ++i) {
        std::this_thread::sleep_until(first + i * period);
        const SteadyClock::time_point now = SteadyClock::now();
        std::memcpy(frame, &now, sizeof now);
        ring.push(frame);
    }
}

/// @return seconds from the push of each frame to the return of its take
std::vector<double> TakeAndTime(const Ends& ring, std::size_t frames) {
    short frame[kFrameBytes / sizeof(short)];
    std::vector<double> delays;
    for (std::size_t i = 0; i < frames; ++i) {
        ring.take(frame);
        SteadyClock::time_point pushed;
        std::memcpy(&pushed, frame, sizeof pushed);
        delays.push_back(std::chrono::duration<double>(SteadyClock::now() - pushed).count());
    }
    return delays;
}

/// What was measured of one ring, in seconds.
struct RateResult {
    double processor = 0;        // of both threads, for all frames
    std::vector<double> delays;  // of each frame from push to take

    void Add(const RateResult& other) {
        processor += other.processor;
        delays.insert(delays.end(), other.delays.begin(), other.delays.end());
    }
};

/// Passes frames through all rings at the same time. The rings' frames are evenly spread over each period, so
/// that other load on the machine affects all rings alike.
std::vector<RateResult> PassAtRate(const std::vector<Ends>& rings, long perSecond, std::size_t frames) {
    const std::chrono::nanoseconds period(1'000'000'000 / perSecond);
    SteadyClock::time_point first = SteadyClock::now() + std::chrono::milliseconds(10);
    std::vector<std::atomic<double>> processor(rings.size());
    std::vector<RateResult> results(rings.size());
    std::vector<std::thread> threads;
    for (std::size_t ring = 0; ring < rings.size(); ++ring) {
        threads.emplace_back([&, ring, first] {
            PushAtRate(rings[ring], frames, first, period);
            processor[ring] += ProcessorSeconds();
        });
        threads.emplace_back([&, ring] {
            results[ring].delays = TakeAndTime(rings[ring], frames);
            processor[ring] += ProcessorSeconds();
        });
        first += period / static_cast<long>(rings.size());
    }
    for (std::size_t ring = 0; ring < rings.size(); ++ring) {
        threads[2 * ring].join();
        threads[2 * ring + 1].join();
        results[ring].processor = processor[ring];
    }
    return results;
}

/// One figure of the rings at a fixed rate. The 99th percentiles of two identical rings differ by up to a
/// third, so ours may be that much above the peer's.
struct RateFigure {
    const char* name;
    double (*of)(const RateResult& result);
    double required;
};

double PercentileOf(std::vector<double> values, std::size_t percent) {
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(values.size() * percent / 100);
    std::nth_element(values.begin(), at, values.end());
    return *at;
}

constexpr RateFigure kRateFigures[] = {
    {"processor time of both threads",
     [](const RateResult& result) { return result.processor / static_cast<double>(result.delays.size()); },
     1.2},
    {"delay from push to take, median",
     [](const RateResult& result) { return PercentileOf(result.delays, 50); }, 0},
    {"delay from push to take, 99th percentile",
     [](const RateResult& result) { return PercentileOf(result.delays, 99); }, 1.33}};

/// Measures the rings while their threads wait most of the time. The ring that starts first is slower, so
/// each run has both orders. All runs together decide, since single frames dominate the percentile of one.
void MeasureAtRate(Suite& suite, long perSecond, std::size_t frames) {
    std::vector<RateResult> ours(suite.IsShort() ? 1 : kRuns);
    std::vector<RateResult> theirs(ours.size());
    RateResult allOurs;
    RateResult allTheirs;
    for (std::size_t run = 0; run < ours.size(); ++run) {
        for (const std::size_t first : {0U, 1U}) {
            std::vector<Ends> rings{MakeEnds<OurRing>(), MakeEnds<RingOver<MutexSemaphore>>()};
            std::swap(rings[0], rings[first]);
            const std::vector<RateResult> results =
                PassAtRate(rings, perSecond, suite.IsShort() ? 5 : frames);
            ours[run].Add(results[first]);
            theirs[run].Add(results[1 - first]);
        }
        allOurs.Add(ours[run]);
        allTheirs.Add(theirs[run]);
    }
    for (const RateFigure& figure : kRateFigures) {
        Runs ratios{.oursSeconds = figure.of(allOurs), .peerSeconds = figure.of(allTheirs)};
        ratios.together = ratios.oursSeconds / ratios.peerSeconds;
        for (std::size_t run = 0; run < ours.size(); ++run) {
            ratios.figures.push_back(figure.of(ours[run]) / figure.of(theirs[run]));
        }
        suite.RecordRuns("AudioFrameStream", std::to_string(perSecond) + " frames a second: " + figure.name,
                         kSemaphores, ratios, Bound::kAtMost, figure.required, "times");
    }
}

}  // namespace

void MeasureFrameRing(Suite& suite) {
    MeasureThroughput(suite);
    MeasureAtRate(suite, 100, 500);
    MeasureAtRate(suite, 1000, 2000);
    suite.MeasureCurve(
        "AudioFrameStream: a frame between threads", "threads", Growth::kNone, {1, 2, 4, 6, 8},
        [&](double size) -> std::vector<Contender> {
            const auto threads = static_cast<unsigned int>(size);
            const std::size_t count = suite.IsShort() ? 10 : 1000;
            return {Through<OurRing>("AudioFrameStream", threads, 2, count),
                    Through<RingOver<MutexSemaphore>>(kSemaphores, threads, 2, count)};
        },
        4, Clock::kWall);
}

}  // namespace velm::bench
