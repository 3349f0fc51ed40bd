#pragma once

#include "velm/AudioStream.h"

namespace velm {

class Semaphore;

/// A blocking ring buffer of fixed-size audio frames, shared by threads: a push waits while the ring is full,
/// a take while it is empty. A frame is `frameSampleSize` samples without a header. Bytes are copied as they
/// are, at any bit depth.
///
/// Frame operations block only between Initialize and Terminate. Before and after, they fail with
/// VELM_ERROR_UTIL_UNKNOWN on a full or empty ring, and the object must be used by one thread at a time. The
/// sample operations of the base class never block; on a shared stream, they make its frame counts wrong.
///
/// A frame operation returns 0; VELM_ERROR_UTIL_UNKNOWN when Terminate released it, when UnlockForce released
/// it and the ring is still full or empty, or when there is no storage; VELM_ERROR_UTIL_INVALID_PARAM,
/// without blocking, for a null frame.
///
/// Threads: any number may push and take between Initialize and Terminate. The two sizes are snapshots.
class VELM_UTIL_API AudioFrameStream : public AudioStream {
public:
    /// Allocates zero-filled storage for the frames. There is no storage if AudioStream would have none for
    /// the same format, for frames of 0 samples, or if frameNum + 1 frames exceed 2^32 - 1 bytes.
    /// @param frameSampleSize  samples per frame
    /// @param frameNum  capacity in frames
    AudioFrameStream(unsigned int frameSampleSize, unsigned int frameNum, unsigned int channelNum,
                     unsigned int bitsPerSample);

    /// Terminates the stream, which takes at least 50 ms, and frees the storage.
    ~AudioFrameStream() override;

    AudioFrameStream(const AudioFrameStream&) = delete;
    AudioFrameStream& operator=(const AudioFrameStream&) = delete;

    /// Makes the frame operations block. The ring must be empty: frames that it already holds are not
    /// counted. Call once, and once more after each Terminate.
    /// @return 0, also for a ring of 0 frames, where every frame operation fails without blocking;
    ///         VELM_ERROR_UTIL_NOT_INITIALIZED when there is no storage: frame operations fail without
    ///         blocking; VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY: frame operations do not block
    ErrorCode Initialize() override;

    /// Ends blocking: wakes one blocked thread on each side, waits up to 500 ms for a thread that is copying
    /// a frame (a killed one never finishes), then gives the woken threads 50 ms to leave. Their operations
    /// return VELM_ERROR_UTIL_UNKNOWN. The frames stay in the ring.
    /// Threads: at most one may be blocked on each side; none may start a frame operation meanwhile.
    void Terminate() override;

    /// Appends a frame after the newest; waits for a free slot.
    /// @param frame  the samples of one frame; owned by the caller
    ErrorCode PushBackFrame(short* frame);
    /// Appends a frame of zero bytes after the newest; waits for a free slot.
    ErrorCode PushBackClearFrame();
    /// Removes the oldest frame into `frame`; waits for one.
    /// @param frame  out: the samples of one frame; owned by the caller
    ErrorCode TakeFrontFrame(short* frame);
    /// Discards the oldest frame; waits for one.
    ErrorCode DropFrontFrame();
    /// Inserts a frame before the oldest; waits for a free slot.
    /// @param frame  the samples of one frame; owned by the caller
    ErrorCode PushFrontFrame(short* frame);
    /// Inserts a frame of zero bytes before the oldest; waits for a free slot.
    ErrorCode PushFrontClearFrame();
    /// Removes the newest frame into `frame`; waits for one.
    /// @param frame  out: the samples of one frame; owned by the caller
    ErrorCode TakeBackFrame(short* frame);
    /// Discards the newest frame; waits for one.
    ErrorCode DropBackFrame();

    /// Appends frames of zero bytes until the ring is full or a push fails.
    /// @return 0
    ErrorCode PushAllClearFrame();
    /// Discards the oldest frames until the ring is empty or a drop fails.
    /// @return 0
    ErrorCode DropAllFrame();

    unsigned int GetUsedFrameSize();  ///< whole frames in the ring
    unsigned int GetFreeFrameSize();  ///< whole frames that still fit

    /// Releases one blocked push and one blocked take; on a side where none is blocked, the next operation
    /// that would block does not. A released operation fails if the ring is still full or empty. Calls
    /// accumulate: for takes up to the number of free slots, for pushes up to the number of frames.
    void UnlockForce();

private:
    bool IsReady();
    void WaitForHolder();
    void DestroySemaphores();
    ErrorCode Lock(Semaphore*& slots);
    ErrorCode Unlock(Semaphore*& slots);
    ErrorCode PushLock();
    ErrorCode PushUnlock();
    ErrorCode TakeLock();
    ErrorCode TakeUnlock();

    unsigned int m_nFrameSampleSize;
    unsigned int m_nFrameNum;
    Semaphore* m_pPushSemaphore;  // counts free slots; owned, as are the other two
    Semaphore* m_pTakeSemaphore;  // counts frames
    Semaphore* m_pLockSemaphore;  // 1 while no thread uses the ring
    // Initialize's release pairs with IsReady's acquire and publishes the pointers above.
    int m_bInitialized;
};

}  // namespace velm
