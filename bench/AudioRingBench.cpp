// AudioStream against other rings, and against the two copies that every ring needs.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "Families.h"
#include "velm/AudioStream.h"

#ifdef VELM_BENCH_BOOST
#include <boost/lockfree/spsc_queue.hpp>
#endif
#ifdef VELM_BENCH_JACK
#include <jack/ringbuffer.h>
#endif
#ifdef VELM_BENCH_PORTAUDIO
// Debian's libportaudio.a contains the ring, but its headers do not declare it.
extern "C" {
long PaUtil_InitializeRingBuffer(void* ring, long elementSize, long elementCount, void* storage);
long PaUtil_WriteRingBuffer(void* ring, const void* elements, long elementCount);
long PaUtil_ReadRingBuffer(void* ring, void* elements, long elementCount);
}
#endif

namespace velm::bench {
namespace {

constexpr unsigned int kSampleSize = 4;  // bytes: stereo, 16 bits
constexpr unsigned int kSlots = 4096;    // some rings need a power of two
constexpr unsigned int kBlock = 480;

/// The samples pushed, and a buffer for those taken.
struct Samples {
    alignas(64) unsigned char in[kBlock * kSampleSize];
    alignas(64) unsigned char out[kBlock * kSampleSize];
};

Peer PortAudio(Samples& data, unsigned int count, double required) {
    const std::string name = "PortAudio's ring";
#ifdef VELM_BENCH_PORTAUDIO
    struct Ring {
        alignas(64) unsigned char state[256];  // opaque; the library needs less
        unsigned char storage[kSlots * kSampleSize];
    };
    const auto ring = std::make_shared<Ring>();
    PaUtil_InitializeRingBuffer(ring->state, kSampleSize, kSlots, ring->storage);
    return {Repeat(
                name,
                [ring, &data, count] {
                    PaUtil_WriteRingBuffer(ring->state, data.in, static_cast<long>(count));
                    PaUtil_ReadRingBuffer(ring->state, data.out, static_cast<long>(count));
                },
                kShort),
            required};
#else
    (void)data, (void)count;
    return Missing(name, "portaudio19-dev", required);
#endif
}

Peer Jack(Samples& data, unsigned int count, double required) {
    const std::string name = "JACK's ring";
#ifdef VELM_BENCH_JACK
    const std::shared_ptr<jack_ringbuffer_t> ring(jack_ringbuffer_create(kSlots * kSampleSize),
                                                  jack_ringbuffer_free);
    const std::size_t bytes = count * kSampleSize;
    return {Repeat(
                name,
                [ring, &data, bytes] {
                    jack_ringbuffer_write(ring.get(), reinterpret_cast<const char*>(data.in), bytes);
                    jack_ringbuffer_read(ring.get(), reinterpret_cast<char*>(data.out), bytes);
                },
                kShort),
            required};
#else
    (void)data, (void)count;
    return Missing(name, "libjack-jackd2-dev", required);
#endif
}

Peer Boost(Samples& data, unsigned int count, double required) {
    const std::string name = "boost::lockfree::spsc_queue";
#ifdef VELM_BENCH_BOOST
    using Sample = unsigned int;
    static_assert(sizeof(Sample) == kSampleSize);
    using Queue = boost::lockfree::spsc_queue<Sample, boost::lockfree::capacity<kSlots>>;
    const auto queue = std::make_shared<Queue>();
    return {Repeat(
                name,
                [queue, &data, count] {
                    queue->push(reinterpret_cast<const Sample*>(data.in), count);
                    queue->pop(reinterpret_cast<Sample*>(data.out), count);
                },
                kShort),
            required};
#else
    (void)data, (void)count;
    return Missing(name, "libboost-dev", required);
#endif
}

/// The copies that every ring needs: through storage of the rings' size, in two pieces where a block wraps
/// around.
/// @param bytes  the block size; not a constant, for which the compiler would inline a slower copy
Contender TwoCopies(Samples& data, std::size_t bytes) {
    struct Storage {
        alignas(64) unsigned char bytes[kSlots * kSampleSize];
    };
    const auto storage = std::make_shared<Storage>();
    const auto at = std::make_shared<std::size_t>(0);
    return Repeat(
        "two memcpy",
        [storage, at, &data, bytes] {
            unsigned char* const block = storage->bytes + *at;
            const std::size_t toEnd = sizeof storage->bytes - *at;
            const std::size_t first = std::min(bytes, toEnd);
            std::memcpy(block, data.in, first);
            if (first < bytes) {
                std::memcpy(storage->bytes, data.in + first, bytes - first);
            }
            Keep(block);
            std::memcpy(data.out, block, first);
            if (first < bytes) {
                std::memcpy(data.out + first, storage->bytes, bytes - first);
            }
            Keep(&data);
            *at = bytes < toEnd ? *at + bytes : bytes - toEnd;
        },
        kShort);
}

Contender Ours(AudioStream& ring, Samples& data, unsigned int count) {
    return Repeat(
        "push back, take front",
        [&ring, &data, count] {
            ring.PushBackSamples(data.in, count);
            ring.TakeFrontSamples(count, data.out);
        },
        kShort);
}

/// Rings of growing size, kept half full so that the blocks pass through all of the storage.
void MeasureGrowth(Suite& suite) {
    std::vector<double> sizes;
    for (double size = 1 << 10; size <= 1 << 26; size *= 4) {
        sizes.push_back(size);
    }
    constexpr unsigned int kSmallBlock = 64;
    suite.MeasureCurve(
        "AudioStream: a 256-byte block through a half-full ring", "bytes of the ring", Growth::kNone, sizes,
        [&](double size) -> std::vector<Contender> {
            const auto samples = static_cast<unsigned int>(size) / kSampleSize;
            const auto ring = std::make_shared<AudioStream>(samples, 2U, 16U);
            ring->PushBackClearSamples(samples / 2);
            const auto data = std::make_shared<Samples>();
            const auto storage = std::make_shared<std::vector<unsigned char>>(static_cast<std::size_t>(size));
            const auto at = std::make_shared<std::size_t>(0);
            return {Repeat(
                        "AudioStream",
                        [ring, data] {
                            ring->PushBackSamples(data->in, kSmallBlock);
                            ring->TakeFrontSamples(kSmallBlock, data->out);
                        },
                        kShort),
                    Repeat(
                        "two memcpy",
                        [storage, data, at] {
                            constexpr std::size_t kBytes = kSmallBlock * kSampleSize;
                            std::memcpy(storage->data() + *at, data->in, kBytes);
                            const std::size_t half = storage->size() / 2;
                            std::memcpy(data->out, storage->data() + (*at + half) % storage->size(), kBytes);
                            *at = (*at + kBytes) % storage->size();
                            Keep(data.get());
                        },
                        kShort)};
        },
        1 << 12);
}

}  // namespace

void MeasureAudioRing(Suite& suite) {
    const std::string family = "AudioStream";
    const auto data = std::make_unique<Samples>();
    std::memset(data.get(), 1, sizeof *data);
    AudioStream ring(kSlots, 2, 16);
    const Contender block = Ours(ring, *data, kBlock);
    suite.Compare(family, "push + take, 480 samples of 4 bytes", block,
                  {LimitOf(TwoCopies(*data, kBlock * kSampleSize), 0.85), PortAudio(*data, kBlock, 1.0),
                   Jack(*data, kBlock, 1.0), Boost(*data, kBlock, 1.0)});
    suite.Compare(family, "push + take, one sample of 4 bytes", Ours(ring, *data, 1),
                  {Jack(*data, 1, 1.0), PortAudio(*data, 1, 1.0), Boost(*data, 1, 0)});

    const Contender front = Repeat(
        "push front, take back",
        [&] {
            ring.PushFrontSamples(data->in, kBlock);
            ring.TakeBackSamples(kBlock, data->out);
        },
        kShort);
    suite.Compare(family, "push front + take back, 480 samples", front, {{block, 0.85}});
    const Contender clear = Repeat(
        "push clear, take front",
        [&] {
            ring.PushBackClearSamples(kBlock);
            ring.TakeFrontSamples(kBlock, data->out);
        },
        kShort);
    suite.Compare(family, "push back clear + take front, 480 samples", clear, {{block, 0.85}});
    MeasureGrowth(suite);
}

}  // namespace velm::bench
