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

// Of a lock: the stream was terminated while the thread waited, so it must not go on to the ring, where
// another may be at work.
constexpr unsigned int kTurnedAway = VELM_ERROR_UTIL_UNKNOWN;

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
// it before it destroys them.
//
// Nobody gets to the ring beside its holder. The lock's one count is given back by the thread that took it
// and by nobody else; Terminate and Initialize take it themselves before they destroy the semaphores; and a
// thread that they wake out of a wait leaves without a look at the ring.

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
        return result;  // without storage no frame ever comes, so nobody is to wait for one
    }
    if (m_nFrameNum == 0) {
        return result;  // nor without a slot, and a post over a maximum of 0 would let nobody go
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

/// Takes the lock, so that no thread is at the ring and none gets there. A thread that was killed at the ring
/// never gives the lock back, so there is a limit.
void AudioFrameStream::WaitForHolder() {
    if (m_pLockSemaphore == nullptr || IsProcessEnding()) {
        return;
    }
    for (unsigned int waited = 0; !m_pLockSemaphore->TryTake() && waited < kHolderMilliseconds; ++waited) {
        Thread::Sleep(1);
    }
}

void AudioFrameStream::DestroySemaphores() {
    Destroy(m_pLockSemaphore);  // first: a thread that it turns away has come through one of the others
    Destroy(m_pPushSemaphore);
    Destroy(m_pTakeSemaphore);
}

ErrorCode AudioFrameStream::PushBackFrame(short* frame) {
    if (frame == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    if (PushLock() == kTurnedAway) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = PushBackSamples(Bytes(frame), m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushBackClearFrame() {
    if (PushLock() == kTurnedAway) {
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
    if (TakeLock() == kTurnedAway) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = TakeFrontSamples(m_nFrameSampleSize, Bytes(frame));
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::DropFrontFrame() {
    if (TakeLock() == kTurnedAway) {
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
    if (PushLock() == kTurnedAway) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = PushFrontSamples(Bytes(frame), m_nFrameSampleSize);
    PushUnlock();
    return result;
}

ErrorCode AudioFrameStream::PushFrontClearFrame() {
    if (PushLock() == kTurnedAway) {
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
    if (TakeLock() == kTurnedAway) {
        return VELM_ERROR_UTIL_UNKNOWN;
    }
    const ErrorCode result = TakeBackSamples(m_nFrameSampleSize, Bytes(frame));
    TakeUnlock();
    return result;
}

ErrorCode AudioFrameStream::DropBackFrame() {
    if (TakeLock() == kTurnedAway) {
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

/// Takes one of `slots`, then the ring. A thread that a semaphore's end has turned away must not look at the
/// stream any more, which may be gone.
ErrorCode AudioFrameStream::Lock(Semaphore*& slots) {
    if (!IsReady()) {
        return VELM_ERROR_UTIL_NOT_INITIALIZED;
    }
    if (slots->Wait().IsFailed() || !IsReady() || m_pLockSemaphore->Wait().IsFailed()) {
        return kTurnedAway;
    }
    return 0;
}

/// Gives the ring back, be the stream ready or not, then adds one to `slots`. A post over the maximum changes
/// nothing, which is what keeps the counts in bounds after UnlockForce, and the lock's at 1 when the stream
/// was not ready to begin with.
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
