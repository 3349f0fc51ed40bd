#include "velm/AudioStream.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>

namespace velm {
namespace {

// The indices are the only members that concurrent Get operations read. Relaxed atomics cost no more than
// plain accesses.
unsigned int Load(int& index) {
    return static_cast<unsigned int>(std::atomic_ref(index).load(std::memory_order_relaxed));
}

void Store(int& index, unsigned int value) {
    std::atomic_ref(index).store(static_cast<int>(value), std::memory_order_relaxed);
}

// So frames whose size is a multiple of the cache line never share a line.
constexpr std::align_val_t kBufferAlignment{64};

/// The bytes per sample; 0 when they exceed 32 bits.
unsigned int SampleByteSize(unsigned int channelNum, unsigned int bitsPerSample) {
    const unsigned long long bytes = static_cast<unsigned long long>(bitsPerSample / 8) * channelNum;
    return bytes <= UINT_MAX ? static_cast<unsigned int>(bytes) : 0;
}

/// The bytes of the storage; 0 when they exceed 32 bits.
unsigned int BufferByteSize(unsigned int sampleByteSize, unsigned int sampleSize) {
    const unsigned long long bytes = static_cast<unsigned long long>(sampleByteSize) * sampleSize;
    return bytes <= UINT_MAX ? static_cast<unsigned int>(bytes) : 0;
}

template <typename Word>
void CopyEnds(unsigned char* to, const unsigned char* from, std::size_t bytes) {
    Word first;
    Word last;
    std::memcpy(&first, from, sizeof first);
    std::memcpy(&last, from + bytes - sizeof last, sizeof last);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + bytes - sizeof last, &last, sizeof last);
}

/// One or two samples are copied in registers, because calling memcpy would cost more.
inline void Copy(unsigned char* to, const unsigned char* from, std::size_t bytes) {
    if (bytes > 16 || bytes < 4) {
        std::memcpy(to, from, bytes);
    } else if (bytes < 8) {
        CopyEnds<std::uint32_t>(to, from, bytes);
    } else {
        CopyEnds<std::uint64_t>(to, from, bytes);
    }
}

}  // namespace

// The steps of pushing and taking come first so that they are inlined: calls would cost more than the work.

unsigned int AudioStream::GetUsedSampleSize() {
    const unsigned int back = Load(m_nBackIndex);
    const unsigned int front = Load(m_nFrontIndex);
    return back - front + (back >= front ? 0 : m_nMaxSampleSize);
}

unsigned int AudioStream::GetUsedSampleByteSize() {
    return GetUsedSampleSize() * m_nSampleByteSize;
}

unsigned int AudioStream::GetFreeSampleSize() {
    return m_nMaxSampleSize != 0 ? m_nMaxSampleSize - GetUsedSampleSize() - 1 : 0;
}

unsigned int AudioStream::GetFreeSampleByteSize() {
    return GetFreeSampleSize() * m_nSampleByteSize;
}

// Both are false without storage.

inline bool AudioStream::HasRoomFor(unsigned int sampleSize) {
    return m_pBuffer != nullptr && sampleSize < m_nMaxSampleSize - GetUsedSampleSize();
}

inline bool AudioStream::Holds(unsigned int sampleSize) {
    return m_pBuffer != nullptr && sampleSize <= GetUsedSampleSize();
}

/// The index `sampleSize` slots ahead; `sampleSize` must be below the capacity.
inline unsigned int AudioStream::Advance(unsigned int index, unsigned int sampleSize) const {
    const unsigned int toEnd = m_nMaxSampleSize - index;
    return sampleSize < toEnd ? index + sampleSize : sampleSize - toEnd;
}

/// The index `sampleSize` slots back; `sampleSize` must be below the capacity.
inline unsigned int AudioStream::Retreat(unsigned int index, unsigned int sampleSize) const {
    return sampleSize <= index ? index - sampleSize : index + (m_nMaxSampleSize - sampleSize);
}

/// Whether the samples at the index end before the storage does, so that neither they nor the index after
/// them wrap around.
inline bool AudioStream::EndsInside(unsigned int index, unsigned int sampleSize) const {
    return sampleSize < m_nMaxSampleSize - index;
}

inline unsigned char* AudioStream::At(unsigned int index) const {
    return m_pBuffer.get() + std::size_t{index} * m_nSampleByteSize;
}

AudioStream::AudioStream(unsigned int maxSampleSize, unsigned int channelNum, unsigned int bitsPerSample)
    : m_nMaxSampleSize(maxSampleSize),
      m_nChannelNum(channelNum),
      m_nBitsPerSample(bitsPerSample),
      m_nSampleByteSize(SampleByteSize(m_nChannelNum, m_nBitsPerSample)),
      m_nBufferByteSize(BufferByteSize(m_nSampleByteSize, maxSampleSize)),
      m_nBackIndex(0),
      m_nFrontIndex(0) {
    if (m_nBufferByteSize != 0) {
        m_pBuffer.reset(new (kBufferAlignment, std::nothrow) unsigned char[m_nBufferByteSize]());
    }
}

AudioStream::~AudioStream() = default;

void AudioBufferDeleter::operator()(unsigned char* buffer) const {
    operator delete[](buffer, kBufferAlignment);
}

ErrorCode AudioStream::Initialize() {
    return m_pBuffer != nullptr ? 0 : VELM_ERROR_UTIL_NOT_INITIALIZED;
}

void AudioStream::Terminate() {
    m_pBuffer.reset();
}

ErrorCode AudioStream::PushBackSamples(unsigned char* data, unsigned int sampleSize) {
    if (!HasRoomFor(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    if (data == nullptr) {
        return sampleSize != 0 ? VELM_ERROR_UTIL_INVALID_PARAM : 0;
    }
    const unsigned int back = Load(m_nBackIndex);
    if (EndsInside(back, sampleSize)) {
        Copy(At(back), data, sampleSize * m_nSampleByteSize);
        Store(m_nBackIndex, back + sampleSize);
        return 0;
    }
    return CopyIn(back, data, sampleSize, m_nBackIndex, Advance(back, sampleSize));
}

ErrorCode AudioStream::PushBackClearSamples(unsigned int sampleSize) {
    if (!HasRoomFor(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const unsigned int back = Load(m_nBackIndex);
    Clear(back, sampleSize);
    Store(m_nBackIndex, Advance(back, sampleSize));
    return 0;
}

ErrorCode AudioStream::TakeFrontSamples(unsigned int sampleSize, unsigned char* data) {
    if (!Holds(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    if (data == nullptr) {
        return sampleSize != 0 ? VELM_ERROR_UTIL_INVALID_PARAM : 0;
    }
    const unsigned int front = Load(m_nFrontIndex);
    if (EndsInside(front, sampleSize)) {
        Copy(data, At(front), sampleSize * m_nSampleByteSize);
        Store(m_nFrontIndex, front + sampleSize);
        return 0;
    }
    return CopyOut(front, data, sampleSize, m_nFrontIndex, Advance(front, sampleSize));
}

ErrorCode AudioStream::DropFrontSamples(unsigned int sampleSize) {
    if (!Holds(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    Store(m_nFrontIndex, Advance(Load(m_nFrontIndex), sampleSize));
    return 0;
}

ErrorCode AudioStream::PushFrontSamples(unsigned char* data, unsigned int sampleSize) {
    if (!HasRoomFor(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    if (data == nullptr) {
        return sampleSize != 0 ? VELM_ERROR_UTIL_INVALID_PARAM : 0;
    }
    const unsigned int front = Retreat(Load(m_nFrontIndex), sampleSize);
    if (EndsInside(front, sampleSize)) {
        Copy(At(front), data, sampleSize * m_nSampleByteSize);
        Store(m_nFrontIndex, front);
        return 0;
    }
    return CopyIn(front, data, sampleSize, m_nFrontIndex, front);
}

ErrorCode AudioStream::PushFrontClearSamples(unsigned int sampleSize) {
    if (!HasRoomFor(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const unsigned int front = Retreat(Load(m_nFrontIndex), sampleSize);
    Clear(front, sampleSize);
    Store(m_nFrontIndex, front);
    return 0;
}

ErrorCode AudioStream::TakeBackSamples(unsigned int sampleSize, unsigned char* data) {
    if (!Holds(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    if (data == nullptr) {
        return sampleSize != 0 ? VELM_ERROR_UTIL_INVALID_PARAM : 0;
    }
    const unsigned int back = Retreat(Load(m_nBackIndex), sampleSize);
    if (EndsInside(back, sampleSize)) {
        Copy(data, At(back), sampleSize * m_nSampleByteSize);
        Store(m_nBackIndex, back);
        return 0;
    }
    return CopyOut(back, data, sampleSize, m_nBackIndex, back);
}

ErrorCode AudioStream::DropBackSamples(unsigned int sampleSize) {
    if (!Holds(sampleSize)) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    Store(m_nBackIndex, Retreat(Load(m_nBackIndex), sampleSize));
    return 0;
}

ErrorCode AudioStream::DropAllSamples() {
    if (m_pBuffer == nullptr) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    Store(m_nBackIndex, 0);
    Store(m_nFrontIndex, 0);
    return 0;
}

// Samples that wrap around are copied in two pieces. The index `end` changes only after the copy.

ErrorCode AudioStream::CopyIn(unsigned int index, const unsigned char* data, unsigned int sampleSize,
                              int& end, unsigned int newEnd) {
    const std::size_t offset = std::size_t{index} * m_nSampleByteSize;
    const std::size_t bytes = std::size_t{sampleSize} * m_nSampleByteSize;
    const std::size_t toEnd = m_nBufferByteSize - offset;
    if (bytes <= toEnd) {
        std::copy_n(data, bytes, m_pBuffer.get() + offset);
    } else {
        std::copy_n(data, toEnd, m_pBuffer.get() + offset);
        std::copy_n(data + toEnd, bytes - toEnd, m_pBuffer.get());
    }
    Store(end, newEnd);
    return 0;
}

ErrorCode AudioStream::CopyOut(unsigned int index, unsigned char* data, unsigned int sampleSize, int& end,
                               unsigned int newEnd) {
    const std::size_t offset = std::size_t{index} * m_nSampleByteSize;
    const std::size_t bytes = std::size_t{sampleSize} * m_nSampleByteSize;
    const std::size_t toEnd = m_nBufferByteSize - offset;
    if (bytes <= toEnd) {
        std::copy_n(m_pBuffer.get() + offset, bytes, data);
    } else {
        std::copy_n(m_pBuffer.get() + offset, toEnd, data);
        std::copy_n(m_pBuffer.get(), bytes - toEnd, data + toEnd);
    }
    Store(end, newEnd);
    return 0;
}

void AudioStream::Clear(unsigned int index, unsigned int sampleSize) {
    const std::size_t offset = std::size_t{index} * m_nSampleByteSize;
    const std::size_t bytes = std::size_t{sampleSize} * m_nSampleByteSize;
    const std::size_t beforeEnd = std::min(bytes, m_nBufferByteSize - offset);
    std::fill_n(m_pBuffer.get() + offset, beforeEnd, static_cast<unsigned char>(0));
    std::fill_n(m_pBuffer.get(), bytes - beforeEnd, static_cast<unsigned char>(0));
}

}  // namespace velm
