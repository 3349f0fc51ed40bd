#include "velm/core/ErrorRegistry.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <latch>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "velm/core/CoreErrorCode.h"

#ifndef _WIN32
#include <malloc.h>
#include <unistd.h>
#endif

namespace velm {
namespace {

// The first test of the program, so that the registry comes into being with all the threads at it.
TEST(ErrorRegistry, ThreadsThatRegisterAtOnceLoseAndDoubleNoCode) {
    constexpr unsigned int kThreads = 8;
    constexpr unsigned int kCodes = 100;  // of each pair of threads
    std::latch ready(kThreads);
    std::vector<std::jthread> threads;
    for (unsigned int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&ready, first = 0xA0000000 + number / 2 * kCodes] {
            ready.arrive_and_wait();
            for (unsigned int code = first; code < first + kCodes; ++code) {
                RegisterErrorCode(code, "THREADS", std::to_string(code).c_str());
                EXPECT_NE(FindErrorCode(code), nullptr);
            }
        });
    }
    threads.clear();  // joins
    std::set<std::string> names;
    unsigned int count = 0;
    for (const ErrorCodeInfo& info : GetRegisteredErrorCodes()) {
        if (info.facility == std::string("THREADS")) {
            EXPECT_EQ(info.name, std::to_string(info.code));
            names.insert(info.name);
            ++count;
        }
    }
    EXPECT_EQ(names.size(), kThreads / 2 * kCodes) << "lost";
    EXPECT_EQ(count, kThreads / 2 * kCodes) << "registered twice";
}

bool g_registered = false;

TEST(ErrorRegistry, KeepsItsOwnCopyOfTheFirstRegistration) {
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
// Handlers of the exit run in the reverse order; what is registered before any library is initialised runs
// after the last of their destructors, as a thread may that nobody stopped.
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

TEST(ErrorRegistry, KnowsTheCoreCodesAndNoOthers) {
    ASSERT_NE(FindErrorCode(VELM_ERROR_CORE_NOTHING_TO_READ), nullptr);
    EXPECT_STREQ(FindErrorCode(0x84E8900D)->name, "VELM_ERROR_CORE_NOTHING_TO_READ");
    EXPECT_EQ(FindErrorCode(0x84E89000), nullptr);
}

}  // namespace
}  // namespace velm
