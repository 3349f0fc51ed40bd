#include "velm/AudioFrameStream.h"

#include <atomic>
#include <climits>
#include <new>

#include "velm/core/ProcessEnd.h"
#include "velm/core/Semaphore.h"
#include "velm/core/Thread.h"

namespace velm {
namespace {

constexpr unsigned int kLeaveMilliseconds = 50;
constexpr unsigned int kHolderMilliseconds = 500;

// Result of PushLock and TakeLock: the stream was terminated while the thread waited, so it must not touch
// the ring, which another thread may be using.
constexpr unsigned int kTerminated = VELM_ERROR_UTIL_UNKNOWN;

/// The capacity in samples of a ring for `frameNum` frames; 0 when it exceeds 32 bits.
unsigned int RingSampleSize(unsigned int frameSampleSize, unsigned int frameNum) {
    const unsigned long long samples = (static_cast<unsigned long long>(frameNum) + 1) * frameSampleSize;
    return samples <= UINT_MAX ? static_cast<unsigned int>(samples) : 0;
}

unsigned char* Bytes(short* frame) {
    return reinterpret_cast<unsigned char*>(frame);
}

/// Clears the pointer only after the delete, unlike a smart pointer: the destructor waits for the threads it
/// releases, and they still read the pointer.
void Destroy(Semaphore*& semaphore) {
    delete semaphore;
    semaphore = nullptr;
}

}  // namespace

// m_bInitialized alone says that the stream is ready: Initialize sets it once the semaphores exist, Terminate
// clears it before destroying them.
//
// Only one thread at a time uses the ring. The lock's single count is released only by the thread that
// acquired it. Terminate and Initialize acquire it before they destroy the semaphores. A thread that they
// wake from a wait leaves without touching the ring.

AudioFrameStream::AudioFrameStream(unsigned int frameSampleSize, unsigned int frameNum,
                                   unsigned int channelNum, unsigned int bitsPerSample)
    : AudioStream(RingSampleSize(frameSampleSize, frameNum), channelNum, bitsPerSample),
      m_nFrameSampleSize(frameSampleSize),
      m_nFrameNum(frameNum),
      m_pPushSemaphore(nullptr),
      m_pTakeSemaphore(nullptr),
      m_pLockSemaphore(nullptr),
      m_bInitialized(0) {}

AudioFrameStream::~AudioFrameStream() {
    AudioFrameStream::Terminate();
}

ErrorCode AudioFrameStream::Initialize() {
    std::atomic_ref(m_bInitialized).store(0, std::memory_order_release);
    WaitForHolder();
    DestroySemaphores();
    const ErrorCode result = AudioStream::Initialize();
    if (result.IsFailed()) {
        return result;  // without storage no frame ever arrives, so nothing may wait for one
    }
    if (m_nFrameNum == 0) {
        return result;  // likewise without slots: a semaphore with maximum 0 can never release a waiter
    }
    m_pPushSemaphore = new (std::nothrow) Semaphore(m_nFrameNum, m_nFrameNum);
    m_pTakeSemaphore = new (std::nothrow) Semaphore(0, m_nFrameNum);
    m_pLockSemaphore = new (std::nothrow) Semaphore(1, 1);
    for (Semaphore* semaphore : {m_pPushSemaphore, m_pTakeSemaphore, m_pLockSemaphore}) {
        if (semaphore == nullptr || semaphore->Post(0).IsFailed()) {
            DestroySemaphores();
            return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
        }
    }
    std::atomic_ref(m_bInitialized).store(1, std::memory_order_release);
    return 0;
}

void AudioFrameStream::Terminate() {
    std::atomic_ref(m_bInitialized).store(0, std::memory_order_release);
    for (Semaphore* semaphore : {m_pPushSemaphore, m_pTakeSemaphore}) {
        if (semaphore != nullptr && !IsProcessEnding()) {
            semaphore->Post(1);
        }
    }
    WaitForHolder();
    Thread::Sleep(kLeaveMilliseconds);
    DestroySemaphores();
}

/// Acquires the lock and keeps it, so that no thread uses the ring from now on. Gives up after a while: a
/// thread that was killed while it used the ring never releases the lock.
void AudioFrameStream::WaitForHolder() {
    if (m_pLockSemaphore == nullptr || IsProcessEnding()) {
        return;
    }
    for (unsigned int waited = 0; !m_pLockSemaphore->TryTake() && waited < kHolderMilliseconds; ++waited) {
        Thread::Sleep(1);
    }
}

void AudioFrameStream::DestroySemaphores() {
    Destroy(m_pLockSemaphore);  // first: a thread that waits for the lock has passed its other semaphore
    Destroy(m_pPushSemaphore);
    Destroy(m_pTakeSemaphore);
}

ErrorCode AudioFrameStream::PushBackFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (PushLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = PushBackSamples(Bytes(frame), m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushBackClearFrame() {
    if (PushLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = PushBackClearSamples(m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::TakeFrontFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (TakeLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = TakeFrontSamples(m_nFrameSampleSize, Bytes(frame));
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::DropFrontFrame() {
    if (TakeLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = DropFrontSamples(m_nFrameSampleSize);
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushFrontFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (PushLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = PushFrontSamples(Bytes(frame), m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushFrontClearFrame() {
    if (PushLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = PushFrontClearSamples(m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::TakeBackFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (TakeLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = TakeBackSamples(m_nFrameSampleSize, Bytes(frame));
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::DropBackFrame() {
    if (TakeLock() == kTerminated) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = DropBackSamples(m_nFrameSampleSize);
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushAllClearFrame() {
    while (GetFreeFrameSize() != 0 && !PushBackClearFrame().IsFailed()) {
    }
    return 0;
}

ErrorCode AudioFrameStream::DropAllFrame() {
    while (GetUsedFrameSize() != 0 && !DropFrontFrame().IsFailed()) {
    }
    return 0;
}

unsigned int AudioFrameStream::GetUsedFrameSize() {
    return m_nFrameSampleSize != 0 ? GetUsedSampleSize() / m_nFrameSampleSize : 0;
}

unsigned int AudioFrameStream::GetFreeFrameSize() {
    return m_nFrameSampleSize != 0 ? GetFreeSampleSize() / m_nFrameSampleSize : 0;
}

// Does not post the lock: no thread blocks while it owns the lock, and releasing it on behalf of its owner
// would let a second thread into the ring.
void AudioFrameStream::UnlockForce() {
    if (IsReady()) {
        m_pTakeSemaphore->Post(1);
        m_pPushSemaphore->Post(1);
    }
}

bool AudioFrameStream::IsReady() {
    return std::atomic_ref(m_bInitialized).load(std::memory_order_acquire) != 0;
}

/// Takes one of `slots`, then acquires the lock. A thread whose wait failed must not access the stream any
/// more: it may be destroyed.
ErrorCode AudioFrameStream::Lock(Semaphore*& slots) {
    if (!IsReady()) {
        return VELM_ERROR_UTIL_NOT_INITIALIZED;
    }
    if (slots->Wait().IsFailed() || !IsReady() || m_pLockSemaphore->Wait().IsFailed()) {
        return kTerminated;
    }
    return 0;
}

/// Releases the lock, whether or not the stream is ready, then adds one to `slots`. A post past the maximum
/// has no effect. That keeps the counts within bounds after UnlockForce, and the lock's count at 1 if the
/// stream was not ready and the lock was therefore not acquired.
ErrorCode AudioFrameStream::Unlock(Semaphore*& slots) {
    if (m_pLockSemaphore != nullptr) {
        m_pLockSemaphore->Post(1);
    }
    if (!IsReady()) {
        return VELM_ERROR_UTIL_NOT_INITIALIZED;
    }
    slots->Post(1);
    return 0;
}

ErrorCode AudioFrameStream::PushLock() {
    return Lock(m_pPushSemaphore);
}

ErrorCode AudioFrameStream::PushUnlock() {
    return Unlock(m_pTakeSemaphore);
}

ErrorCode AudioFrameStream::TakeLock() {
    return Lock(m_pTakeSemaphore);
}

ErrorCode AudioFrameStream::TakeUnlock() {
    return Unlock(m_pPushSemaphore);
}

}  // namespace velm
