/// @file
/// Our frame ring, the same ring over other semaphores, and the code that passes frames through either.
#pragma once

#include <algorithm>
#include <thread>
#include <vector>

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

}  // namespace velm::bench
