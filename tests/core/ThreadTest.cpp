#include "velm/core/Thread.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "velm/core/CoreErrorCode.h"
#include "velm/core/SyncEvent.h"

#ifndef _WIN32
#include <pthread.h>
#endif

namespace velm {
namespace {

void Start(Thread& thread, int (*function)(void*), void* argument, const ThreadConfig& config = {}) {
    ASSERT_EQ(thread.Initialize(config, function, argument), 0U);
    ASSERT_EQ(thread.Start(nullptr), 0U);
}

TEST(Thread, RunsItsFunctionAndHandsBackTheExitCode) {
    int value = 41;
    Thread thread;
    const auto increment = [](void* argument) {
        ++*static_cast<int*>(argument);
        return -7;
    };
    ASSERT_EQ(thread.Initialize(ThreadConfig(), increment, &value), 0U);
    for (int round = 1; round <= 2; ++round) {
        ASSERT_EQ(thread.Start(nullptr), 0U);
        unsigned long long exitCode = 0;
        ASSERT_EQ(thread.Join(&exitCode), 0U);
        EXPECT_EQ(exitCode, 0xFFFFFFF9U);
        EXPECT_EQ(value, 41 + round);
    }
}

TEST(Thread, RefusesCallsOutOfOrder) {
    Thread thread;
    const auto nothing = [](void*) { return 0; };
    EXPECT_EQ(thread.Initialize(ThreadConfig(), nullptr, nullptr), VELM_ERROR_CORE_INVALID_PARAM);
    EXPECT_EQ(thread.Start(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    ASSERT_EQ(thread.Initialize(ThreadConfig(), nothing, nullptr), 0U);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    ASSERT_EQ(thread.Start(nullptr), 0U);
    EXPECT_EQ(thread.Start(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    EXPECT_EQ(thread.Initialize(ThreadConfig(), nothing, nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
    EXPECT_EQ(thread.Join(nullptr), 0U);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
}

TEST(Thread, AnExceptionEndsTheThreadAndNotTheProcess) {
    Thread thread;
    Start(
        thread, [](void*) -> int { throw std::runtime_error("on purpose"); }, nullptr);
    unsigned long long exitCode = 5;
    EXPECT_EQ(thread.Join(&exitCode), VELM_ERROR_CORE_THREAD_EXCEPTION);
    EXPECT_EQ(exitCode, 5U);
}

#ifndef _WIN32
TEST(Thread, MayEndByPthreadExit) {
    Thread thread;
    Start(
        thread, [](void*) -> int { pthread_exit(nullptr); }, nullptr);
    EXPECT_EQ(thread.Join(nullptr), VELM_ERROR_CORE_THREAD_EXCEPTION);
}
#endif

TEST(Thread, CannotJoinItself) {
    Thread thread;
    const auto joinSelf = [](void* self) {
        EXPECT_EQ(static_cast<Thread*>(self)->Join(nullptr), VELM_ERROR_CORE_ILLEGAL_CALL);
        return 0;
    };
    Start(thread, joinSelf, &thread);
    EXPECT_EQ(thread.Join(nullptr), 0U);
}

TEST(Thread, DestructionWaitsForARunningThread) {
    bool ended = false;
    const auto slow = [](void* argument) {
        Thread::Sleep(20);
        *static_cast<bool*>(argument) = true;
        return 0;
    };
    {
        Thread thread;
        Start(thread, slow, &ended);
    }
    EXPECT_TRUE(ended);
}

TEST(Thread, MayDestroyItsOwnObject) {
    static auto thread = std::make_unique<Thread>();
    static SyncEvent destroyed(false, false);
    const auto destroySelf = [](void*) {
        thread.reset();
        destroyed.Set();
        return 0;
    };
    Start(*thread, destroySelf, nullptr);
    destroyed.Wait();
    EXPECT_EQ(thread, nullptr);
}

/// Puts the system's own name of the calling thread into a std::wstring.
int LookUpName(void* result) {
    auto& name = *static_cast<std::wstring*>(result);
#ifdef _WIN32
    const auto getThreadDescription = reinterpret_cast<HRESULT(WINAPI*)(HANDLE, PWSTR*)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "GetThreadDescription")));
    PWSTR text = nullptr;
    if (getThreadDescription != nullptr && getThreadDescription(GetCurrentThread(), &text) >= 0) {
        name = text;
        LocalFree(text);
    }
#else
    char text[16] = {};
    pthread_getname_np(pthread_self(), text, sizeof text);
    name.assign(text, text + std::strlen(text));
#endif
    return 0;
}

TEST(Thread, TellsTheSystemItsName) {
    std::wstring seen;
    ThreadConfig config;
    config.SetName("audio consumer thread");
    Thread thread;
    Start(thread, LookUpName, &seen, config);
    ASSERT_EQ(thread.Join(nullptr), 0U);
    // Linux keeps 15 bytes.
    EXPECT_TRUE(seen == L"audio consumer thread" || seen == L"audio consumer ");
}

}  // namespace
}  // namespace velm
