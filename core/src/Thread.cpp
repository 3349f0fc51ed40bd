#include "velm/core/Thread.h"

#include <windows.h>
#include <process.h>

#include <new>
#include <string>
#include <utility>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/PathHelper.h"
#include "velm/core/SyncEvent.h"

#ifdef __GLIBC__
#include <cxxabi.h>
#endif

namespace velm {
namespace {

/// Names the calling thread. Looked up at run time: Windows before version 10 lacks the call, and the thread
/// then has no name.
void NameCurrentThread(const char* utf8Name) {
    using SetThreadDescriptionCall = HRESULT(WINAPI*)(HANDLE, PCWSTR);
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    if (kernel == nullptr || *utf8Name == '\0') {
        return;
    }
    const auto setThreadDescription = reinterpret_cast<SetThreadDescriptionCall>(
        reinterpret_cast<void*>(GetProcAddress(kernel, "SetThreadDescription")));
    if (setThreadDescription == nullptr) {
        return;
    }
    try {
        std::wstring name;
        if (!PathHelper::GetWstringFromUtf8String(utf8Name, name).IsFailed()) {
            setThreadDescription(GetCurrentThread(), name.c_str());
        }
    } catch (const std::bad_alloc&) {
    }
}

/// Whether the call returns rather than throws.
template <typename Call>
bool Returns(Call call) {
    try {
        call();
        return true;
    }
#ifdef __GLIBC__
    catch (const abi::__forced_unwind&) {
        throw;  // pthread_exit or pthread_cancel; swallowing it would end the process
    }
#endif
    catch (...) {
        return false;
    }
}

}  // namespace

struct Thread::Impl {
    struct HandleCloser {
        void operator()(void* open) const { CloseHandle(open); }
    };

    static unsigned int WINAPI Run(void* record);

    Thread* owner = nullptr;
    ThreadConfig config;
    int (*function)(void*) = nullptr;
    void* argument = nullptr;
    void* parameter = nullptr;
    // Written by the thread, read after it has ended.
    int exitCode = 0;
    bool returned = false;

    unsigned int threadId = 0;
    std::unique_ptr<void, HandleCloser> handle;
    SyncEvent started{false, false};  // set once the thread may read the two members above
    // Keeps this object alive while the thread runs, which may destroy its own Thread.
    std::shared_ptr<Impl> self;
};

unsigned int WINAPI Thread::Impl::Run(void* record) {
    const std::shared_ptr<Impl> impl = std::move(static_cast<Impl*>(record)->self);
    impl->started.Wait();
    NameCurrentThread(impl->config.GetName());
    impl->returned = Returns([&] { impl->exitCode = (*impl->owner)(impl->parameter); });
    return 0;
}

Thread::Thread() = default;

Thread::~Thread() {
    if (m_impl != nullptr && m_impl->handle != nullptr && m_impl->threadId != GetCurrentThreadId()) {
        WaitForSingleObject(m_impl->handle.get(), INFINITE);
    }
}

int Thread::operator()(void*) {
    return m_impl->function(m_impl->argument);
}

ErrorCode Thread::Initialize(const ThreadConfig& config, int (*function)(void*), void* argument) {
    if (function == nullptr) {
        return VELM_ERROR_CORE_INVALID_PARAM;
    }
    if (m_impl != nullptr && m_impl->handle != nullptr) {
        return VELM_ERROR_CORE_ILLEGAL_CALL;
    }
    try {
        auto impl = std::make_shared<Impl>();
        impl->owner = this;
        impl->config = config;
        impl->function = function;
        impl->argument = argument;
        m_impl = std::move(impl);
        return 0;
    } catch (const std::bad_alloc&) {
        return VELM_ERROR_CORE_NOT_ENOUGH_MEMORY;
    }
}

ErrorCode Thread::Start(void* parameter) {
    if (m_impl == nullptr || m_impl->handle != nullptr) {
        return VELM_ERROR_CORE_ILLEGAL_CALL;
    }
    m_impl->parameter = parameter;
    m_impl->returned = false;
    m_impl->self = m_impl;
    const auto handle = _beginthreadex(nullptr, m_impl->config.GetStackSize(), &Impl::Run, m_impl.get(),
                                       STACK_SIZE_PARAM_IS_A_RESERVATION, &m_impl->threadId);
    if (handle == 0) {
        m_impl->self.reset();
        return VELM_ERROR_CORE_UNKNOWN;
    }
    m_impl->handle.reset(reinterpret_cast<void*>(handle));
    m_impl->started.Set();
    return 0;
}

ErrorCode Thread::Join(unsigned long long* exitCode) {
    if (m_impl == nullptr || m_impl->handle == nullptr || m_impl->threadId == GetCurrentThreadId()) {
        return VELM_ERROR_CORE_ILLEGAL_CALL;
    }
    if (WaitForSingleObject(m_impl->handle.get(), INFINITE) != WAIT_OBJECT_0) {
        return VELM_ERROR_CORE_UNKNOWN;
    }
    m_impl->handle.reset();
    if (!m_impl->returned) {
        return VELM_ERROR_CORE_THREAD_EXCEPTION;
    }
    if (exitCode != nullptr) {
        *exitCode = static_cast<unsigned int>(m_impl->exitCode);
    }
    return 0;
}

ErrorCode Thread::Sleep(unsigned int milliseconds) {
    ::Sleep(milliseconds);
    return 0;
}

}  // namespace velm
