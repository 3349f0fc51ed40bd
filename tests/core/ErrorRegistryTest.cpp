#include "velm/core/ErrorRegistry.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "velm/core/CoreErrorCode.h"

#ifndef _WIN32
#include <malloc.h>
#include <unistd.h>
#endif

namespace velm::error_registry_test {

// The first test of the program, so that all the threads find the registry empty.
TEST(ErrorRegistry, LosesOrRepeatsNoCodeAcrossThreads) {
    constexpr unsigned int kThreads = 4;
    constexpr unsigned int kCodes = 200;
    std::atomic<unsigned int> arrived{0};
    const auto registerAll = [&] {
        for (unsigned int i = 0; i < kCodes; ++i) {
            // std::barrier hangs under Wine.
            for (++arrived; arrived < kThreads * (i + 1);) {
                std::this_thread::yield();
            }
            RegisterErrorCode(0xA0000000 + i, "THREADS", std::to_string(0xA0000000 + i).c_str());
            EXPECT_NE(FindErrorCode(0xA0000000 + i), nullptr);
        }
    };
    {
        const std::jthread threads[kThreads] = {std::jthread(registerAll), std::jthread(registerAll),
                                                std::jthread(registerAll), std::jthread(registerAll)};
    }
    unsigned int registered = 0;
    for (const ErrorCodeInfo& info : GetRegisteredErrorCodes()) {
        if (info.facility == std::string("THREADS")) {
            EXPECT_EQ(info.name, std::to_string(info.code));
            ++registered;
        }
    }
    EXPECT_EQ(registered, kCodes);
}

bool g_registered = false;

TEST(ErrorRegistry, KeepsTheTextOfTheFirstRegistration) {
    std::string facility = "A_FACILITY";
    std::string name = "A_NAME";
    RegisterErrorCode(0x90000001, facility.c_str(), name.c_str());
    facility.assign(facility.size(), 'x');
    name.assign(name.size(), 'x');
    RegisterErrorCode(0x90000001, nullptr, nullptr);
    const ErrorCodeInfo* const info = FindErrorCode(0x90000001);
    ASSERT_NE(info, nullptr);
    EXPECT_STREQ(info->facility, "A_FACILITY");
    EXPECT_STREQ(info->name, "A_NAME");
    g_registered = true;
}

#ifndef _WIN32
// Exit handlers run in reverse order: one registered before the libraries initialize runs after their
// destructors, like a thread that is still running.
void LookUpAfterTheEnd(int, void*) {
    const ErrorCodeInfo* const info = FindErrorCode(0x90000001);
    if (g_registered && (info == nullptr || std::string_view(info->name) != "A_NAME")) {
        _exit(1);
    }
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const g_beforeLibraries)() = [] {
    on_exit(&LookUpAfterTheEnd, nullptr);
};

[[maybe_unused]] const int g_overwriteFreed = mallopt(M_PERTURB, 1);
#endif

TEST(ErrorRegistry, KnowsAllCoreCodes) {
    EXPECT_EQ(FindErrorCode(VELM_ERROR_CORE_UNKNOWN - 1), nullptr);
    for (unsigned int code = VELM_ERROR_CORE_UNKNOWN; code <= VELM_ERROR_CORE_NOTHING_TO_READ; ++code) {
        EXPECT_NE(FindErrorCode(code), nullptr) << code;
    }
    EXPECT_STREQ(FindErrorCode(0x84E8900D)->name, "VELM_ERROR_CORE_NOTHING_TO_READ");
}

}  // namespace velm::error_registry_test
