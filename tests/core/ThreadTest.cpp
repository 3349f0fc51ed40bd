#include "velm/core/Thread.h"

#include <windows.h>

#include <gtest/gtest.h>

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
    const auto fail = [](void*) -> int { throw std::runtime_error("on purpose"); };
    ASSERT_EQ(thread.Initialize(ThreadConfig(), fail, nullptr), 0U);
    ASSERT_EQ(thread.Start(nullptr), 0U);
    unsigned long long exitCode = 5;
    EXPECT_EQ(thread.Join(&exitCode), VELM_ERROR_CORE_THREAD_EXCEPTION);
    EXPECT_EQ(exitCode, 5U);
}

TEST(Thread, CannotJoinItself) {
    struct Shared {
        Thread thread;
        ErrorCode result;
    } shared;
    const auto joinSelf = [](void* argument) {
        auto* const self = static_cast<Shared*>(argument);
        self->result = self->thread.Join(nullptr);
        return 0;
    };
    ASSERT_EQ(shared.thread.Initialize(ThreadConfig(), joinSelf, &shared), 0U);
    ASSERT_EQ(shared.thread.Start(nullptr), 0U);
    ASSERT_EQ(shared.thread.Join(nullptr), 0U);
    EXPECT_EQ(shared.result, VELM_ERROR_CORE_ILLEGAL_CALL);
}

TEST(Thread, DestructionWaitsForARunningThread) {
    bool ended = false;
    {
        Thread thread;
        const auto slow = [](void* argument) {
            Thread::Sleep(20);
            *static_cast<bool*>(argument) = true;
            return 0;
        };
        ASSERT_EQ(thread.Initialize(ThreadConfig(), slow, &ended), 0U);
        ASSERT_EQ(thread.Start(nullptr), 0U);
    }
    EXPECT_TRUE(ended);
}

TEST(Thread, MayDestroyItsOwnObject) {
    struct Shared {
        std::unique_ptr<Thread> thread = std::make_unique<Thread>();
        SyncEvent destroyed{false, false};
    };
    static Shared shared;
    const auto destroySelf = [](void*) {
        shared.thread.reset();
        shared.destroyed.Set();
        return 0;
    };
    ASSERT_EQ(shared.thread->Initialize(ThreadConfig(), destroySelf, nullptr), 0U);
    ASSERT_EQ(shared.thread->Start(nullptr), 0U);
    shared.destroyed.Wait();
    EXPECT_EQ(shared.thread, nullptr);
}

/// The system's own name of the calling thread, or "?" where it does not tell.
std::string SystemName() {
#ifdef _WIN32
    using GetThreadDescriptionCall = HRESULT(WINAPI*)(HANDLE, PWSTR*);
    const auto call = reinterpret_cast<GetThreadDescriptionCall>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernelbase.dll"), "GetThreadDescription")));
    PWSTR name = nullptr;
    if (call == nullptr || call(GetCurrentThread(), &name) < 0) {
        return "?";
    }
    std::string ascii;
    for (const wchar_t* next = name; *next != 0; ++next) {
        ascii += static_cast<char>(*next);
    }
    LocalFree(name);
    return ascii;
#else
    char name[16] = {};
    pthread_getname_np(pthread_self(), name, sizeof name);
    return name;
#endif
}

TEST(Thread, TellsTheSystemItsName) {
    std::string seen;
    ThreadConfig config;
    config.SetName("audio consumer thread");
    Thread thread;
    const auto look = [](void* argument) {
        *static_cast<std::string*>(argument) = SystemName();
        return 0;
    };
    ASSERT_EQ(thread.Initialize(config, look, &seen), 0U);
    ASSERT_EQ(thread.Start(nullptr), 0U);
    ASSERT_EQ(thread.Join(nullptr), 0U);
    // Linux keeps 15 bytes.
    EXPECT_TRUE(seen == "audio consumer thread" || seen == "audio consumer ") << seen;
}

TEST(ThreadConfig, KeepsItsOwnCopyOfTheName) {
    std::string name = "worker";
    ThreadConfig config;
    EXPECT_STREQ(config.GetName(), "");
    config.SetName(name.c_str());
    name = "xxxxxx";
    const ThreadConfig copy(config);
    config.SetName(nullptr);
    EXPECT_STREQ(copy.GetName(), "worker");
    EXPECT_STREQ(config.GetName(), "");
}

}  // namespace
}  // namespace velm
