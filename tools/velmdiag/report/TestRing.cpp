#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <iterator>
#include <vector>

#include "Command.h"
#include "SelfTests.h"
#include "velm/AudioFrameStream.h"
#include "velm/core/Thread.h"
#include "velm/core/Tick.h"

namespace velmdiag::report {
namespace {

constexpr unsigned int kSamples = 480;  // 10 ms at 48 kHz
constexpr unsigned int kValues = kSamples * 2;
constexpr unsigned int kRingFrames = 8;
constexpr double kTimeoutSeconds = 10;

using RingFrame = std::array<short, kValues>;

/// The start of a frame. The samples after it are computed from its number.
struct Stamp {
    unsigned long long tick;
    unsigned int number;
};
constexpr std::size_t kStampValues = sizeof(Stamp) / sizeof(short);

short SampleOf(unsigned int number, std::size_t index) {
    return static_cast<short>(number * 31 + index);
}

/// Passes frames through a ring from one thread to another and records what arrives.
class RingTransfer {
public:
    /// @param pause  of the producer after each frame, in milliseconds
    RingTransfer(unsigned int frames, unsigned int pause) : m_frames(frames), m_pause(pause) {}

    void Run() {
        Require(!m_ring.Initialize().IsFailed(), "the ring cannot be created");
        const unsigned long long start = velm::Tick::Get().GetCount();
        velm::Thread producer;
        velm::Thread consumer;
        Launch(consumer, [](void* self) { return static_cast<RingTransfer*>(self)->Consume(); });
        Launch(producer, [](void* self) { return static_cast<RingTransfer*>(self)->Produce(); });
        while (m_running != 0) {
            velm::Thread::Sleep(1);
            if (SecondsSince(start) > kTimeoutSeconds) {
                m_stop = true;
                m_ring.UnlockForce();  // repeated, because a thread may not have blocked yet
            }
        }
        producer.Join(nullptr);
        consumer.Join(nullptr);
        m_seconds = SecondsSince(start);
    }

    unsigned int Sent() const { return m_sent; }
    unsigned int Lost() const { return m_sent - std::min(m_sent, m_arrived); }
    unsigned int Damaged() const { return m_damaged; }
    double Seconds() const { return m_seconds; }
    /// From the call that pushes a frame to the return of the one that takes it, in microseconds.
    std::vector<double>& Delays() { return m_delays; }

private:
    void Launch(velm::Thread& thread, int (*function)(void*)) {
        ++m_running;
        if (thread.Initialize(velm::ThreadConfig(), function, this).IsFailed() ||
            thread.Start(nullptr).IsFailed()) {
            --m_running;
            m_stop = true;
        }
    }

    int Produce() {
        RingFrame frame;
        for (unsigned int number = 0; number < m_frames && !m_stop; ++number) {
            for (std::size_t i = kStampValues; i < kValues; ++i) {
                frame[i] = SampleOf(number, i);
            }
            const Stamp stamp{velm::Tick::Get().GetCount(), number};
            std::memcpy(frame.data(), &stamp, sizeof stamp);
            m_sent += !m_ring.PushBackFrame(frame.data()).IsFailed();
            if (m_pause != 0) {
                velm::Thread::Sleep(m_pause);
            }
        }
        --m_running;
        return 0;
    }

    int Consume() {
        RingFrame frame;
        m_delays.reserve(m_frames);
        for (unsigned int number = 0; number < m_frames && !m_stop; ++number) {
            if (m_ring.TakeFrontFrame(frame.data()).IsFailed()) {
                continue;
            }
            Stamp stamp{};
            std::memcpy(&stamp, frame.data(), sizeof stamp);
            m_delays.push_back(SecondsSince(stamp.tick) * 1e6);
            ++m_arrived;
            bool intact = stamp.number == number;
            for (std::size_t i = kStampValues; i < kValues; ++i) {
                intact = intact && frame[i] == SampleOf(number, i);
            }
            m_damaged += !intact;
        }
        --m_running;
        return 0;
    }

    unsigned int m_frames;
    unsigned int m_pause;
    velm::AudioFrameStream m_ring{kSamples, kRingFrames, 2, 16};
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_running{0};
    double m_seconds = 0;

    // Each is written by one thread and read after it was joined.
    unsigned int m_sent = 0;
    unsigned int m_arrived = 0;
    unsigned int m_damaged = 0;
    std::vector<double> m_delays;
};

double Percentile(const std::vector<double>& sorted, double share) {
    return sorted[static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1))];
}

/// A column per range of delays; the ranges grow in steps of 1, 2, 5.
Plot DistributionOf(const std::vector<double>& delays) {
    constexpr struct Bin {
        double end;
        const char* edge;
    } kBins[] = {{10, "10 \u00b5s"}, {20, "20"},    {50, "50"}, {100, "100"}, {200, "200"},
                 {500, "500"},       {1e3, "1 ms"}, {2e3, "2"}, {5e3, "5"},   {1e9, ""}};
    Plot plot{"delay_distribution",
              "Delay of a frame through the ring",
              "Share of frames with a delay between the two times, one frame every 2 ms, consumer waiting",
              {},
              0,
              ""};
    double begin = 0;
    for (const Bin& bin : kBins) {
        const auto count =
            std::ranges::count_if(delays, [&](double delay) { return delay >= begin && delay < bin.end; });
        const double share = 100.0 * static_cast<double>(count) / static_cast<double>(delays.size());
        const std::string label = *bin.edge == '\0'
                                      ? "from 5,000 \u00b5s"
                                      : Grouped(static_cast<unsigned long long>(begin)) + " to " +
                                            Grouped(static_cast<unsigned long long>(bin.end)) + " \u00b5s";
        plot.bars.push_back({label, share, Fixed(share, share < 10 && count != 0 ? 1 : 0) + " %", bin.edge});
        begin = bin.end;
    }
    return plot;
}

void AddDelays(SelfTest& test, const std::vector<double>& sorted) {
    constexpr struct {
        const char* key;
        double share;
    } kShown[] = {{"median_delay", 0.5},
                  {"95_percent_within", 0.95},
                  {"99_percent_within", 0.99},
                  {"longest_delay", 1}};
    for (const auto& shown : kShown) {
        AddTime(test.figures, shown.key, Percentile(sorted, shown.share));
    }
}

}  // namespace

std::string TestRing(SelfTest& test) {
    constexpr unsigned int kFastFrames = 10'000;
    constexpr unsigned int kPacedFrames = 400;
    constexpr unsigned int kPause = 2;
    RingTransfer fast(kFastFrames, 0);
    fast.Run();
    RingTransfer paced(kPacedFrames, kPause);
    paced.Run();
    const unsigned int sent = fast.Sent() + paced.Sent();
    const unsigned int lost = fast.Lost() + paced.Lost();
    const unsigned int damaged = fast.Damaged() + paced.Damaged();
    AddCount(test.figures, "frames", sent);
    test.figures.Add("frames_lost", static_cast<long long>(lost));
    test.figures.Add("frames_damaged_or_out_of_order", static_cast<long long>(damaged));
    AddCount(test.figures, "frames_per_second",
             static_cast<unsigned long long>(fast.Sent() / fast.Seconds()));
    std::vector<double>& delays = paced.Delays();
    std::ranges::sort(delays);
    if (!delays.empty()) {
        AddDelays(test, delays);
        test.plots.push_back(DistributionOf(delays));
    }
    Require(sent == kFastFrames + kPacedFrames, "the ring stopped taking frames");
    Require(lost == 0, std::to_string(lost) + " of " + std::to_string(sent) + " frames were lost");
    Require(damaged == 0, std::to_string(damaged) + " frames arrived damaged or out of order");
    return Grouped(sent) + " frames between two threads, none lost or damaged; " + "median delay " +
           Fixed(Percentile(delays, 0.5), 0) + " \u00b5s.";
}

}  // namespace velmdiag::report
