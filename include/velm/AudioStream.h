#pragma once

#include <memory>

#include "velm/UtilErrorCode.h"

namespace velm {

/// The library's own; releases the storage of a ring.
struct AudioBufferDeleter {
    /// Releases the storage.
    void operator()(unsigned char* buffer) const;
};

/// A ring of interleaved PCM samples that is filled and emptied at both ends. One sample is one instant
/// across all channels: (bits per sample / 8, rounded down) * channels bytes, which are copied as they are.
///
/// One slot stays empty, so a ring of capacity n holds n - 1 samples. An operation moves all the samples it
/// is asked for or none. Every push, take and drop returns 0; VELM_ERROR_UTIL_UNKNOWN when there is not
/// enough room, not enough is held, or the ring has no storage; VELM_ERROR_UTIL_INVALID_PARAM when `data` is
/// null although samples are to be copied. After a failure nothing has changed. 0 samples always succeed
/// while there is storage.
///
/// Threads: one at a time, or under the caller's lock; only the four Get operations may run beside another
/// thread's operation, and then are a snapshot.
class VELM_UTIL_API AudioStream {
public:
    /// Allocates the storage and fills it with zero bytes. Whether that succeeded, Initialize says. There is
    /// no storage for a capacity of 0, no channels, under 8 bits, or where the storage's bytes do not fit 32
    /// bits.
    /// @param maxSampleSize  the capacity in samples
    AudioStream(unsigned int maxSampleSize, unsigned int channelNum, unsigned int bitsPerSample);
    virtual ~AudioStream();
    AudioStream(const AudioStream&) = delete;
    AudioStream& operator=(const AudioStream&) = delete;

    /// @return 0; VELM_ERROR_UTIL_NOT_INITIALIZED when there is no storage
    virtual ErrorCode Initialize();

    /// Releases the storage for good. The Get operations go on answering.
    virtual void Terminate();

    /// Appends samples after the newest.
    /// @param data  sampleSize samples; the caller's
    ErrorCode PushBackSamples(unsigned char* data, unsigned int sampleSize);

    /// Appends samples of zero bytes after the newest.
    ErrorCode PushBackClearSamples(unsigned int sampleSize);

    /// Removes the oldest samples into `data`, oldest first.
    /// @param data  receives sampleSize samples; the caller's
    ErrorCode TakeFrontSamples(unsigned int sampleSize, unsigned char* data);

    /// Removes the oldest samples.
    ErrorCode DropFrontSamples(unsigned int sampleSize);

    /// Inserts samples before the oldest; the first of `data` becomes the oldest.
    /// @param data  sampleSize samples; the caller's
    ErrorCode PushFrontSamples(unsigned char* data, unsigned int sampleSize);

    /// Inserts samples of zero bytes before the oldest.
    ErrorCode PushFrontClearSamples(unsigned int sampleSize);

    /// Removes the newest samples into `data`, the newest last.
    /// @param data  receives sampleSize samples; the caller's
    ErrorCode TakeBackSamples(unsigned int sampleSize, unsigned char* data);

    /// Removes the newest samples.
    ErrorCode DropBackSamples(unsigned int sampleSize);

    /// Empties the ring.
    /// @return 0; VELM_ERROR_UTIL_UNKNOWN when there is no storage
    ErrorCode DropAllSamples();

    unsigned int GetUsedSampleSize();      ///< what the ring holds, in samples
    unsigned int GetUsedSampleByteSize();  ///< what the ring holds, in bytes
    unsigned int GetFreeSampleSize();      ///< what the ring has room for, in samples
    unsigned int GetFreeSampleByteSize();  ///< what the ring has room for, in bytes

private:
    ErrorCode CheckPush(const void* data, unsigned int sampleSize);
    ErrorCode CheckTake(const void* data, unsigned int sampleSize);
    unsigned int Advance(unsigned int index, unsigned int sampleSize) const;
    unsigned int Retreat(unsigned int index, unsigned int sampleSize) const;
    bool CopyFewIn(unsigned int index, const unsigned char* data, unsigned int sampleSize);
    bool CopyFewOut(unsigned int index, unsigned char* data, unsigned int sampleSize) const;
    ErrorCode CopyIn(unsigned int index, const unsigned char* data, unsigned int sampleSize, int& end,
                     unsigned int newEnd);
    ErrorCode CopyOut(unsigned int index, unsigned char* data, unsigned int sampleSize, int& end,
                      unsigned int newEnd);
    void Clear(unsigned int index, unsigned int sampleSize);

    unsigned int m_nMaxSampleSize;
    unsigned int m_nChannelNum;
    unsigned int m_nBitsPerSample;
    unsigned int m_nSampleByteSize;
    std::unique_ptr<unsigned char[], AudioBufferDeleter> m_pBuffer;  // on a cache line of its own
    unsigned int m_nBufferByteSize;
    int m_nBackIndex;   // one past the newest sample; written by the thread that pushes or takes at the back
    int m_nFrontIndex;  // the oldest sample; written by the thread that pushes or takes at the front
};

}  // namespace velm
