#include "velm/AudioFrameStream.h"

#include <atomic>
#include <climits>
#include <new>

#include "velm/core/Semaphore.h"
#include "velm/core/Thread.h"

namespace velm {
namespace {

constexpr unsigned int kLeaveMilliseconds = 50;

/// The capacity in samples of a ring for `frameNum` whole frames, or 0 when there is to be no storage.
unsigned int RingSampleSize(unsigned int frameSampleSize, unsigned int frameNum) {
    const unsigned long long samples = (static_cast<unsigned long long>(frameNum) + 1) * frameSampleSize;
    return samples <= UINT_MAX ? static_cast<unsigned int>(samples) : 0;
}

unsigned char* Bytes(short* frame) {
    return reinterpret_cast<unsigned char*>(frame);
}

/// Deletes first and clears then, which no smart pointer does: the destructor waits for the threads that it
/// turns away, and only when they are gone does nobody read the pointer any more.
void Destroy(Semaphore*& semaphore) {
    delete semaphore;
    semaphore = nullptr;
}

}  // namespace

// Ready is published by m_bInitialized alone: Initialize sets it after the semaphores exist, Terminate clears
// it before it destroys them. A thread that wakes in Terminate finds it cleared and leaves the semaphores
// alone.

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
    DestroySemaphores();
    const ErrorCode result = AudioStream::Initialize();
    if (result.IsFailed()) {
        return result;  // without storage no frame ever comes, so nobody is to wait for one
    }
    m_pPushSemaphore = new (std::nothrow) Semaphore(m_nFrameNum, m_nFrameNum);
    m_pTakeSemaphore = new (std::nothrow) Semaphore(0, m_nFrameNum);
    m_pLockSemaphore = new (std::nothrow) Semaphore(1, 1);
    if (m_pPushSemaphore == nullptr || m_pTakeSemaphore == nullptr || m_pLockSemaphore == nullptr) {
        return VELM_ERROR_UTIL_NOT_ENOUGH_MEMORY;
    }
    std::atomic_ref(m_bInitialized).store(1, std::memory_order_release);
    return 0;
}

void AudioFrameStream::Terminate() {
    std::atomic_ref(m_bInitialized).store(0, std::memory_order_release);
    for (Semaphore* semaphore : {m_pPushSemaphore, m_pTakeSemaphore, m_pLockSemaphore}) {
        if (semaphore != nullptr) {
            semaphore->Post(1);
        }
    }
    Thread::Sleep(kLeaveMilliseconds);
    DestroySemaphores();
}

void AudioFrameStream::DestroySemaphores() {
    Destroy(m_pPushSemaphore);
    Destroy(m_pTakeSemaphore);
    Destroy(m_pLockSemaphore);
}

ErrorCode AudioFrameStream::PushBackFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    PushLock();
    const ErrorCode result = PushBackSamples(Bytes(frame), m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushBackClearFrame() {
    PushLock();
    const ErrorCode result = PushBackClearSamples(m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::TakeFrontFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    TakeLock();
    const ErrorCode result = TakeFrontSamples(m_nFrameSampleSize, Bytes(frame));
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::DropFrontFrame() {
    TakeLock();
    const ErrorCode result = DropFrontSamples(m_nFrameSampleSize);
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushFrontFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    PushLock();
    const ErrorCode result = PushFrontSamples(Bytes(frame), m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushFrontClearFrame() {
    PushLock();
    const ErrorCode result = PushFrontClearSamples(m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::TakeBackFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    TakeLock();
    const ErrorCode result = TakeBackSamples(m_nFrameSampleSize, Bytes(frame));
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::DropBackFrame() {
    TakeLock();
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

// The ring's own lock is left alone: no thread keeps it, and given back for one that has it, it would let a
// second thread in.
void AudioFrameStream::UnlockForce() {
    if (IsReady()) {
        m_pTakeSemaphore->Post(1);
        m_pPushSemaphore->Post(1);
    }
}

bool AudioFrameStream::IsReady() {
    return std::atomic_ref(m_bInitialized).load(std::memory_order_acquire) != 0;
}

/// Takes one of `slots`, then the ring. The stream may have been terminated while the thread waited.
ErrorCode AudioFrameStream::Lock(Semaphore*& slots) {
    if (!IsReady()) {
        return VELM_ERROR_UTIL_NOT_INITIALIZED;
    }
    slots->Wait();
    if (!IsReady()) {
        return VELM_ERROR_UTIL_NOT_INITIALIZED;
    }
    m_pLockSemaphore->Wait();
    return 0;
}

/// Gives the ring back, then adds one to `slots`. A post over the maximum changes nothing, which is what
/// keeps the counts in bounds after UnlockForce.
ErrorCode AudioFrameStream::Unlock(Semaphore*& slots) {
    if (!IsReady()) {
        return VELM_ERROR_UTIL_NOT_INITIALIZED;
    }
    m_pLockSemaphore->Post(1);
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
