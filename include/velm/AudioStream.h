#pragma once

#include <memory>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Frees the storage of a ring; for the library's own use.
struct AudioBufferDeleter {
    /// Frees the storage.
    void operator()(unsigned char* buffer) const;
};

/// A ring buffer of interleaved PCM samples, filled and emptied at both ends. A sample is one instant across
/// all channels: (bits per sample / 8, rounded down) * channels bytes, which are copied as they are.
///
/// One slot stays empty, so a ring of capacity n holds n - 1 samples. An operation moves all requested
/// samples or none. Every push, take and drop returns 0; VELM_ERROR_UTIL_UNKNOWN when there is not enough
/// room, when the ring holds too few samples, or when it has no storage; VELM_ERROR_UTIL_INVALID_PARAM when
/// `data` is null and samples are to be copied. A failed operation changes nothing. With storage, an
/// operation on 0 samples always succeeds.
///
/// Threads: one at a time, or under the caller's lock. The four Get operations may run concurrently with
/// another thread's operation; their results are then snapshots.
class VELM_UTIL_API AudioStream {
public:
    /// Allocates zero-filled storage; Initialize tells whether that succeeded. There is no storage for a
    /// capacity of 0, no channels, under 8 bits, or more than 2^32 - 1 bytes.
    /// @param maxSampleSize  capacity in samples
    AudioStream(unsigned int maxSampleSize, unsigned int channelNum, unsigned int bitsPerSample);
    virtual ~AudioStream();
    AudioStream(const AudioStream&) = delete;
    AudioStream& operator=(const AudioStream&) = delete;

    /// Tells whether the storage was allocated.
    /// @return 0; VELM_ERROR_UTIL_NOT_INITIALIZED when there is no storage
    virtual ErrorCode Initialize();

    /// Frees the storage for good. The Get operations still work.
    virtual void Terminate();

    /// Appends samples after the newest.
    /// @param data  sampleSize samples; owned by the caller
    ErrorCode PushBackSamples(unsigned char* data, unsigned int sampleSize);

    /// Appends samples of zero bytes after the newest.
    ErrorCode PushBackClearSamples(unsigned int sampleSize);

    /// Removes the oldest samples into `data`, oldest first.
    /// @param data  out: sampleSize samples; owned by the caller
    ErrorCode TakeFrontSamples(unsigned int sampleSize, unsigned char* data);

    /// Discards the oldest samples.
    ErrorCode DropFrontSamples(unsigned int sampleSize);

    /// Inserts samples before the oldest; the first one in `data` becomes the oldest.
    /// @param data  sampleSize samples; owned by the caller
    ErrorCode PushFrontSamples(unsigned char* data, unsigned int sampleSize);

    /// Inserts samples of zero bytes before the oldest.
    ErrorCode PushFrontClearSamples(unsigned int sampleSize);

    /// Removes the newest samples into `data`, newest last.
    /// @param data  out: sampleSize samples; owned by the caller
    ErrorCode TakeBackSamples(unsigned int sampleSize, unsigned char* data);

    /// Discards the newest samples.
    ErrorCode DropBackSamples(unsigned int sampleSize);

    /// Empties the ring.
    /// @return 0; VELM_ERROR_UTIL_UNKNOWN when there is no storage
    ErrorCode DropAllSamples();

    unsigned int GetUsedSampleSize();      ///< samples in the ring
    unsigned int GetUsedSampleByteSize();  ///< the same in bytes
    unsigned int GetFreeSampleSize();      ///< samples that still fit
    unsigned int GetFreeSampleByteSize();  ///< the same in bytes

private:
    bool HasRoomFor(unsigned int sampleSize);
    bool Holds(unsigned int sampleSize);
    unsigned int Advance(unsigned int index, unsigned int sampleSize) const;
    unsigned int Retreat(unsigned int index, unsigned int sampleSize) const;
    bool EndsInside(unsigned int index, unsigned int sampleSize) const;
    unsigned char* At(unsigned int index) const;
    ErrorCode CopyIn(unsigned int index, const unsigned char* data, unsigned int sampleSize, int& end,
                     unsigned int newEnd);
    ErrorCode CopyOut(unsigned int index, unsigned char* data, unsigned int sampleSize, int& end,
                      unsigned int newEnd);
    void Clear(unsigned int index, unsigned int sampleSize);

    unsigned int m_nMaxSampleSize;
    unsigned int m_nChannelNum;
    unsigned int m_nBitsPerSample;
    unsigned int m_nSampleByteSize;
    std::unique_ptr<unsigned char[], AudioBufferDeleter> m_pBuffer;  // cache-line aligned
    unsigned int m_nBufferByteSize;
    int m_nBackIndex;   // one past the newest sample; changed by pushes and takes at the back
    int m_nFrontIndex;  // the oldest sample; changed by pushes and takes at the front
};

}  // namespace velm
