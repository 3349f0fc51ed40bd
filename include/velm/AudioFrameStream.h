#pragma once

#include "velm/AudioStream.h"

namespace velm {

class Semaphore;

/// A ring of fixed-size frames of samples between threads: a push waits while the ring is full, a take while
/// it is empty. A frame is `frameSampleSize` samples without a header; its bytes are moved whatever the bit
/// depth.
///
/// From Initialize to Terminate the frame operations wait for each other. Before and after, they do not wait,
/// the caller uses the object from one thread at a time, and a full or empty ring answers
/// VELM_ERROR_UTIL_UNKNOWN. The sample operations of the base class bypass the waiting; on a stream that
/// threads share they break its counts.
///
/// A frame operation returns 0; VELM_ERROR_UTIL_UNKNOWN when it was let through although the ring is full or
/// empty (UnlockForce, Terminate) or when there is no storage; VELM_ERROR_UTIL_INVALID_PARAM at once for a
/// null frame.
///
/// Threads: any number may push and take between Initialize and Terminate. The two sizes are a snapshot.
class VELM_UTIL_API AudioFrameStream : public AudioStream {
public:
    /// Allocates room for the frames, filled with zero bytes. There is no storage where AudioStream would
    /// have none, for a frame of 0 samples, or where the bytes of frameNum + 1 frames do not fit 32 bits.
    /// @param frameSampleSize  samples in a frame
    /// @param frameNum  frames that the ring holds
    AudioFrameStream(unsigned int frameSampleSize, unsigned int frameNum, unsigned int channelNum,
                     unsigned int bitsPerSample);

    /// Terminates the stream, which takes at least 50 ms, and releases the storage.
    ~AudioFrameStream() override;

    AudioFrameStream(const AudioFrameStream&) = delete;
    AudioFrameStream& operator=(const AudioFrameStream&) = delete;

    /// Makes the frame operations wait. The ring is expected to be empty: frames that it holds are not
    /// counted. Called once, and once more after each Terminate.
    /// @return 0; frame operations of a ring for 0 frames fail at once all the same;
    ///         VELM_ERROR_UTIL_NOT_INITIALIZED when there is no storage: frame operations fail at once;
    ///         VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY: the frame operations do not wait
    ErrorCode Initialize() override;

    /// Ends the waiting: wakes a blocked thread on each side, waits for one that is moving a frame (for half
    /// a second at most, because a thread that was killed never gets done) and gives them 50 ms to leave. A
    /// thread that was waiting fails with VELM_ERROR_UTIL_UNKNOWN. The frames stay.
    /// Threads: at most one is blocked on each side, and none enters a frame operation meanwhile.
    void Terminate() override;

    /// Appends a frame after the newest; waits for a free slot.
    /// @param frame  the samples of one frame; the caller's
    ErrorCode PushBackFrame(short* frame);
    /// Appends a frame of zero bytes; waits for a free slot.
    ErrorCode PushBackClearFrame();
    /// Removes the oldest frame; waits for one.
    /// @param frame  receives the samples of one frame; the caller's
    ErrorCode TakeFrontFrame(short* frame);
    /// Removes the oldest frame; waits for one.
    ErrorCode DropFrontFrame();
    /// Inserts a frame before the oldest; waits for a free slot.
    /// @param frame  the samples of one frame; the caller's
    ErrorCode PushFrontFrame(short* frame);
    /// Inserts a frame of zero bytes before the oldest; waits for a free slot.
    ErrorCode PushFrontClearFrame();
    /// Removes the newest frame; waits for one.
    /// @param frame  receives the samples of one frame; the caller's
    ErrorCode TakeBackFrame(short* frame);
    /// Removes the newest frame; waits for one.
    ErrorCode DropBackFrame();

    /// Appends frames of zero bytes until there is no room for another, or one fails.
    /// @return 0
    ErrorCode PushAllClearFrame();
    /// Drops the oldest frame until there is none, or one fails.
    /// @return 0
    ErrorCode DropAllFrame();

    unsigned int GetUsedFrameSize();  ///< whole frames that the ring holds
    unsigned int GetFreeFrameSize();  ///< whole frames that it has room for

    /// Lets one push and one take through without a free slot or a frame: a blocked one now, else the next
    /// that would block. It then fails if the ring is still full or empty. Calls add up, for takes to the
    /// number of free slots and for pushes to the number of frames at most.
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
    Semaphore* m_pPushSemaphore;  // free slots; owned, as are the other two
    Semaphore* m_pTakeSemaphore;  // filled frames
    Semaphore* m_pLockSemaphore;  // 1 while no thread is at the ring
    // Initialize's release pairs with IsReady's acquire, for the pointers above.
    int m_bInitialized;
};

}  // namespace velm
