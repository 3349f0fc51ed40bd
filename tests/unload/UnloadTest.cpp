/// @file
/// Loads and frees the library, which this program does not link; functions are looked up by exported name.
#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "MessageLoop.h"
#include "ProcessResources.h"
#include "velm/core/ErrorCode.h"

namespace velm {

/// The class as a program without the library's headers would declare it.
class WatchdogChecker {
public:
    virtual ~WatchdogChecker() = default;
    virtual bool IsActive() { return ++asked != 0; }

    int asked = 0;
};

namespace {

using namespace test;

constexpr unsigned int kPeriod = 20;  // in milliseconds

template <typename Result, typename... Arguments>
Result Call(HMODULE library, const char* name, Arguments... arguments) {
    void* const address = reinterpret_cast<void*>(GetProcAddress(library, name));
    EXPECT_NE(address, nullptr) << name;
    return reinterpret_cast<Result (*)(Arguments...)>(address)(arguments...);
}

/// Uses everything that lives until the library is unloaded.
void UseAll(HMODULE library, HWND window, WatchdogChecker* checker) {
    void* const watchdog = Call<void*>(library, "_ZN4velm8Watchdog11GetInstanceEv");
    Call<void>(library, "_ZN4velm8Watchdog9SetElapseEj", watchdog, kPeriod);
    const char* const start = "_ZN4velm8Watchdog5StartEP6HWND__PNS_15WatchdogCheckerE";
    EXPECT_EQ(Call<ErrorCode>(library, start, watchdog, window, checker), 0U);
    void* const memory = Call<void*>(library, "_ZN4velm10MemoryInfo11GetInstanceEv");
    EXPECT_EQ(Call<ErrorCode>(library, "_ZN4velm10MemoryInfo10InitializeEPKc", memory, ""), 0U);
    unsigned char plane = 0;
    unsigned int argb = 0;
    Call<void>(library, "_ZN4velm22Yuv420ToArgb8888_BT601EPhS0_S0_jjiiPjj", &plane, &plane, &plane, 1U, 1U, 1,
               1, &argb, 4U);
}

// Leaks per load add up: the runtime reserves 72 KiB for exceptions.
TEST(Unload, LeaksNothingAndStopsTicks) {
    constexpr int kRounds = 50;
    const UniqueWindow window = MakeWindow();
    wchar_t executable[4096];
    const std::wstring folder(executable, GetModuleFileNameW(nullptr, executable, 4096));
    const std::wstring path = folder.substr(0, folder.find_last_of(L"\\/") + 1) + VELM_UTIL_LIBRARY;
    ProcessResources before;
    for (int round = -10; round < kRounds; ++round) {
        if (round == 0) {
            before = GetProcessResources();
        }
        WatchdogChecker checker;
        const HMODULE library = LoadLibraryW(path.c_str());
        ASSERT_NE(library, nullptr);
        UseAll(library, window.get(), &checker);
        EXPECT_TRUE(DisableThreadLibraryCalls(library)) << "the library gets a call for every thread";
        if (round < -7) {
            EXPECT_GE(RunLoop(window.get(), 5 * kPeriod).ticks, 1);
            EXPECT_GE(checker.asked, 1);
        }
        FreeLibrary(library);
        EXPECT_EQ(GetModuleHandleW(path.c_str()), nullptr) << "still there";
        if (round < -7) {
            EXPECT_EQ(RunLoop(window.get(), 5 * kPeriod).ticks, 0);
        }
        EXPECT_FALSE(KillTimer(window.get(), 0)) << "the timer outlived the library";
    }
    const ProcessResources after = GetProcessResources();
    EXPECT_EQ(after.handles, before.handles);
    EXPECT_EQ(after.threads, before.threads);
    EXPECT_LT(after.memory, before.memory + 16 * kRounds);
}

}  // namespace
}  // namespace velm
