/// @file
/// Our frame ring, the same ring over other semaphores, and the code that measures them.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "Suite.h"
#include "velm/AudioFrameStream.h"

namespace velm::bench {

constexpr unsigned int kFrameSamples = 480;
constexpr unsigned int kFrameBytes = 1920;
constexpr unsigned int kFrames = 4;

/// AudioFrameStream itself.
class OurRing {
public:
    OurRing() { m_stream.Initialize(); }
    void Push(short* frame) { m_stream.PushBackFrame(frame); }
    void Take(short* frame) { m_stream.TakeFrontFrame(frame); }

private:
    AudioFrameStream m_stream{kFrameSamples, kFrames, 2, 16};
};

/// AudioFrameStream's algorithm over semaphores of type `Sem`.
template <typename Sem>
class RingOver {
public:
    void Push(short* frame) {
        m_free.Wait();
        m_lock.Wait();
        m_samples.PushBackSamples(reinterpret_cast<unsigned char*>(frame), kFrameSamples);
        m_lock.Post();
        m_filled.Post();
    }

    void Take(short* frame) {
        m_filled.Wait();
        m_lock.Wait();
        m_samples.TakeFrontSamples(kFrameSamples, reinterpret_cast<unsigned char*>(frame));
        m_lock.Post();
        m_free.Post();
    }

private:
    AudioStream m_samples{(kFrames + 1) * kFrameSamples, 2, 16};
    Sem m_free{kFrames};
    Sem m_filled{0};
    Sem m_lock{1};
};

/// Passes frames from half of the threads to the other half; the calling thread is number 0. A single thread
/// alternates between push and take.
/// @param place  called on every thread with its number, to pin it to a processor
template <typename Ring, typename Place>
void Pass(Ring& ring, std::size_t frames, unsigned int threads, Place place) {
    const auto push = [&ring](std::size_t count) {
        short frame[kFrameBytes / sizeof(short)] = {};
        for (; count != 0; --count) {
            ring.Push(frame);
        }
    };
    const auto take = [&ring](std::size_t count) {
        short frame[kFrameBytes / sizeof(short)];
        for (; count != 0; --count) {
            ring.Take(frame);
        }
    };
    place(0U);
    if (threads == 1) {
        for (; frames != 0; --frames) {
            push(1);
            take(1);
        }
        return;
    }
    const std::size_t pairs = threads / 2;
    // The last pair takes the remainder.
    const auto share = [&](std::size_t pair) {
        return frames / pairs + (pair + 1 == pairs ? frames % pairs : 0);
    };
    std::vector<std::thread> others;
    for (std::size_t pair = 0; pair < pairs; ++pair) {
        others.emplace_back([&, pair] {
            place(static_cast<unsigned int>(2 * pair + 1));
            take(share(pair));
        });
        if (pair != 0) {
            others.emplace_back([&, pair] {
                place(static_cast<unsigned int>(2 * pair));
                push(share(pair));
            });
        }
    }
    push(share(0));
    for (std::thread& other : others) {
        other.join();
    }
}

using SteadyClock = std::chrono::steady_clock;

/// The cost of passing frames from one thread to another.
struct Cost {
    double seconds = 0;  // from the start of either thread to the end of both
    double sleeps = 0;   // of both threads

    Cost& operator+=(const Cost& other) {
        seconds += other.seconds;
        sleeps += other.sleeps;
        return *this;
    }
};

/// Passes frames from the calling thread to another; both start at the same time.
/// @param place  called on each thread with its number, 0 or 1
/// @param countSleeps  returns how often the calling thread has slept so far
template <typename Ring, typename Place, typename CountSleeps>
Cost MeasurePass(Ring& ring, std::size_t frames, Place place, CountSleeps countSleeps) {
    SteadyClock::time_point begun[2];
    SteadyClock::time_point ended[2];
    double slept[2];
    std::atomic<int> ready{0};
    const auto run = [&](unsigned int thread, auto pass) {
        short frame[kFrameBytes / sizeof(short)] = {};
        place(thread);
        ++ready;
        while (ready != 2) {
            std::this_thread::yield();
        }
        const double before = countSleeps();
        begun[thread] = SteadyClock::now();
        for (std::size_t i = 0; i < frames; ++i) {
            pass(frame);
        }
        ended[thread] = SteadyClock::now();
        slept[thread] = countSleeps() - before;
    };
    std::thread consumer(run, 1U, [&ring](short* frame) { ring.Take(frame); });
    run(0U, [&ring](short* frame) { ring.Push(frame); });
    consumer.join();
    const std::chrono::duration<double> time = std::max(ended[0], ended[1]) - std::min(begun[0], begun[1]);
    return {time.count(), slept[0] + slept[1]};
}

/// A ring to measure.
struct RingContender {
    std::string name;
    std::function<Cost(std::size_t frames)> pass;  // empty if the ring is missing
    double required = 0;                           // the target ratio of its time to ours
    std::string missingPackage{};                  // the package that provides a missing ring
    bool isLimit = false;                          // a lower bound for the cost
};

constexpr int kRuns = 3;

/// Measures all rings in many short passes, interleaved: whether two threads run in step or alternately sleep
/// may change from one pass to the next, so only a mean over many passes is meaningful.
/// @return for each run and ring, the mean cost of a frame
inline std::vector<std::vector<Cost>> MeasureInterleaved(const std::vector<RingContender>& rings,
                                                         std::size_t frames, bool isShort) {
    const int passes = isShort ? 1 : 20;
    std::vector<std::vector<Cost>> runs(isShort ? 1 : kRuns, std::vector<Cost>(rings.size()));
    for (std::vector<Cost>& run : runs) {
        for (int pass = 0; pass < passes; ++pass) {
            for (std::size_t i = 0; i < rings.size(); ++i) {
                run[i] += rings[i].pass ? rings[i].pass(frames) : Cost{};
            }
        }
        for (Cost& sum : run) {
            sum.seconds /= static_cast<double>(passes) * static_cast<double>(frames);
            sum.sleeps /= static_cast<double>(passes) * static_cast<double>(frames);
        }
    }
    return runs;
}

/// Records the ratio of the time of each ring to that of the first, which is ours.
inline void RecordTimes(Suite& suite, const std::string& work, const std::vector<RingContender>& rings,
                        const std::vector<std::vector<Cost>>& runs) {
    for (std::size_t i = 1; i < rings.size(); ++i) {
        Runs ratios;
        ratios.missingPackage = rings[i].missingPackage;
        ratios.isLimit = rings[i].isLimit;
        for (const std::vector<Cost>& run : runs) {
            if (rings[i].pass) {
                ratios.figures.push_back(run[i].seconds / run[0].seconds);
                ratios.oursSeconds += run[0].seconds / static_cast<double>(runs.size());
                ratios.peerSeconds += run[i].seconds / static_cast<double>(runs.size());
            }
        }
        suite.RecordRuns("AudioFrameStream", work, rings[i].name, ratios, Bound::kAtLeast, rings[i].required);
    }
}

}  // namespace velm::bench
