#include "velm/ThreadCaller.h"

#include <memory>
#include <new>
#include <utility>

#include "velm/core/Thread.h"

namespace velm {
namespace {

enum State : int {
    kNoThread = 65535,
    kStarted = 0,
    kStartFailed = 1,
    kInitializeFailed = 2,
    kNoMemory = 3,
    kJoinFailed = -1,
};

/// A thread and a list of earlier ones that were started but never stopped. The destructor joins them all.
class OwnedThread : public Thread {
public:
    ~OwnedThread() override {
        // In case Stop did not join, or failed to. The base class would join too late: by then the object
        // that the thread calls operator() on is partly destroyed.
        Join(nullptr);
        // Iteratively: recursing through destructors could overflow the stack on a long list.
        while (m_earlier != nullptr) {
            m_earlier = std::exchange(m_earlier->m_earlier, nullptr);
        }
    }

    void TakeOver(Thread* earlier) { m_earlier.reset(static_cast<OwnedThread*>(earlier)); }

private:
    std::unique_ptr<OwnedThread> m_earlier;
};

int ThreadId(int idBase, int count) {
    return static_cast<int>(static_cast<unsigned int>(idBase) * 1000U + static_cast<unsigned int>(count));
}

}  // namespace

int ThreadCaller::mCount = 0;

ThreadCaller::ThreadCaller() : mId(0), mState(kNoThread), mThread(nullptr) {}

ThreadCaller::ThreadCaller(const ThreadCaller& other)
    : mId(other.mId), mState(other.mState), mConfig(other.mConfig), mThread(nullptr) {}

ThreadCaller& ThreadCaller::operator=(const ThreadCaller& other) {
    if (this != &other) {
        mConfig = other.mConfig;  // first: it may throw
        Stop();
        mId = other.mId;
        mState = other.mState;
    }
    return *this;
}

ThreadCaller::~ThreadCaller() {
    Stop();
}

void ThreadCaller::Start(int (*function)(void*), void* argument, const char* name, int idBase) {
    ++mCount;
    mId = ThreadId(idBase, mCount);
    OwnedThread* thread = nullptr;
    try {
        mConfig.SetName(name);
        thread = new OwnedThread;
    } catch (const std::bad_alloc&) {
        mState = kNoMemory;
        return;
    }
    thread->TakeOver(std::exchange(mThread, thread));
    if (mThread->Initialize(mConfig, function, argument) != 0) {
        mState = kInitializeFailed;
        return;
    }
    mState = mThread->Start(nullptr) == 0 ? kStarted : kStartFailed;
}

void ThreadCaller::Start(int (*function)(void*), void* argument, const char* name) {
    Start(function, argument, name, 0);
}

void ThreadCaller::Start(int (*function)(void*), void* argument, int idBase) {
    Start(function, argument, "0", idBase);
}

void ThreadCaller::Stop() {
    if (mState == kStarted) {
        const bool joined = mThread == nullptr || mThread->Join(nullptr) == 0;
        mState = joined ? kNoThread : kJoinFailed;
    }
    delete std::exchange(mThread, nullptr);
}

int ThreadCaller::GetState() {
    return mState;
}

}  // namespace velm
