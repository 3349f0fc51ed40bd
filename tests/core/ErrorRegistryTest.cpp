#include "velm/core/ErrorRegistry.h"

#include <gtest/gtest.h>

#include <latch>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "velm/core/CoreErrorCode.h"

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
}

TEST(ErrorRegistry, KnowsTheCoreCodesAndNoOthers) {
    ASSERT_NE(FindErrorCode(VELM_ERROR_CORE_NOTHING_TO_READ), nullptr);
    EXPECT_STREQ(FindErrorCode(0x84E8900D)->name, "VELM_ERROR_CORE_NOTHING_TO_READ");
    EXPECT_EQ(FindErrorCode(0x84E89000), nullptr);
}

}  // namespace
}  // namespace velm
