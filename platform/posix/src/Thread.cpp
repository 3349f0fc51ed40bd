#include <windows.h>
#include <process.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <thread>

#include "Handle.h"
#include "Intercept.h"
#include "Text.h"

namespace velm::posix {
namespace {

/// State shared by a thread and its handle; lives as long as either.
struct ThreadState {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
    unsigned int id = 0;
    unsigned int(WINAPI* function)(void*) = nullptr;
    void* argument = nullptr;
};

class ThreadObject : public Object {
public:
    explicit ThreadObject(std::shared_ptr<ThreadState> state) : m_state(std::move(state)) {}
    ThreadState& State() { return *m_state; }

private:
    std::shared_ptr<ThreadState> m_state;
};

const HANDLE kCurrentThread = reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-2));

void* RunThread(void* parameter) {
    const std::unique_ptr<std::shared_ptr<ThreadState>> holder(
        static_cast<std::shared_ptr<ThreadState>*>(parameter));
    const std::shared_ptr<ThreadState> state = *holder;
    {
        const std::lock_guard lock(state->mutex);
        state->id = GetCurrentThreadId();
        state->changed.notify_all();
    }
    // A destructor, so that it also runs when pthread_exit unwinds the thread.
    const struct End {
        ~End() {
            const std::lock_guard lock(state.mutex);
            state.ended = true;
            state.changed.notify_all();
        }
        ThreadState& state;
    } end{*state};
    state->function(state->argument);
    return nullptr;
}

}  // namespace
}  // namespace velm::posix

using namespace velm::posix;

UINT_PTR _beginthreadex(void*, unsigned int stackSize, unsigned int(WINAPI* function)(void*), void* argument,
                        unsigned int, unsigned int* threadId) {
    if (MustFail("_beginthreadex")) {
        return 0;
    }
    return WithinSystem(UINT_PTR{0}, [&]() -> UINT_PTR {
        auto state = std::make_shared<ThreadState>();
        auto object = std::make_unique<ThreadObject>(state);
        state->function = function;
        state->argument = argument;

        pthread_attr_t attributes;
        pthread_attr_init(&attributes);
        pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
        if (stackSize != 0) {
            pthread_attr_setstacksize(
                &attributes, std::max(std::size_t{stackSize}, static_cast<std::size_t>(PTHREAD_STACK_MIN)));
        }
        auto holder = std::make_unique<std::shared_ptr<ThreadState>>(state);
        pthread_t thread{};
        const int failed = pthread_create(&thread, &attributes, &RunThread, holder.get());
        pthread_attr_destroy(&attributes);
        if (failed != 0) {
            return 0;
        }
        static_cast<void>(holder.release());  // the thread owns it now
        std::unique_lock lock(state->mutex);
        state->changed.wait(lock, [&] { return state->id != 0; });
        if (threadId != nullptr) {
            *threadId = state->id;
        }
        return reinterpret_cast<UINT_PTR>(ToHandle(object.release()));
    });
}

DWORD GetCurrentThreadId() {
    thread_local const auto id = static_cast<DWORD>(syscall(SYS_gettid));
    return id;
}

HANDLE GetCurrentThread() {
    return kCurrentThread;
}

DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
    if (MustFail("WaitForSingleObject")) {
        return WAIT_FAILED;
    }
    auto* thread = FromHandle<ThreadObject>(handle);
    if (thread == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return WAIT_FAILED;
    }
    ThreadState& state = thread->State();
    std::unique_lock lock(state.mutex);
    const auto ended = [&] { return state.ended; };
    if (milliseconds == INFINITE) {
        state.changed.wait(lock, ended);
        return WAIT_OBJECT_0;
    }
    return state.changed.wait_for(lock, std::chrono::milliseconds(milliseconds), ended) ? WAIT_OBJECT_0
                                                                                        : WAIT_TIMEOUT;
}

HRESULT SetThreadDescription(HANDLE thread, PCWSTR description) {
    if (MustFail("SetThreadDescription") || thread != kCurrentThread || description == nullptr) {
        return static_cast<HRESULT>(0x80004005U);
    }
    return WithinSystem(static_cast<HRESULT>(0x8007000EU), [&]() -> HRESULT {
        constexpr std::size_t kMaxNameBytes = 15;
        std::string name = Utf8(description);
        std::size_t size = std::min(name.size(), kMaxNameBytes);
        while (size < name.size() && (static_cast<unsigned char>(name[size]) & 0xC0U) == 0x80U) {
            --size;  // do not split a UTF-8 sequence
        }
        name.resize(size);
        pthread_setname_np(pthread_self(), name.c_str());
        return 0;
    });
}

void Sleep(DWORD milliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
