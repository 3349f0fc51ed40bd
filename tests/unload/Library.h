/// @file
/// The library by hand: its operations are found by their exported names.
#pragma once

#include <windows.h>
#include <gtest/gtest.h>

#include <string>

#include "velm/core/ErrorCode.h"

namespace velm {

inline constexpr unsigned int kPeriod = 20;  // in milliseconds

/// The class as a program sees it that is not linked with the library.
class WatchdogChecker {
public:
    virtual ~WatchdogChecker() = default;
    virtual bool IsActive() { return ++asked != 0; }

    int asked = 0;
};

class Library {
public:
    Library() {
        wchar_t path[4096];
        const std::wstring executable(path, GetModuleFileNameW(nullptr, path, 4096));
        m_path = executable.substr(0, executable.find_last_of(L"\\/") + 1) + VELM_UTIL_LIBRARY;
        m_module = LoadLibraryW(m_path.c_str());
        EXPECT_NE(m_module, nullptr);
    }

    /// Frees the library; true when it has left the process.
    bool Free() const {
        FreeLibrary(m_module);
        return GetModuleHandleW(m_path.c_str()) == nullptr;
    }

    template <typename Result, typename... Arguments>
    Result Call(const char* name, Arguments... arguments) const {
        void* const address = reinterpret_cast<void*>(GetProcAddress(m_module, name));
        EXPECT_NE(address, nullptr) << name;
        return reinterpret_cast<Result (*)(Arguments...)>(address)(arguments...);
    }

    void StartWatchdog(HWND window, WatchdogChecker* checker) const {
        void* const watchdog = Call<void*>("_ZN4velm8Watchdog11GetInstanceEv");
        Call<void>("_ZN4velm8Watchdog9SetElapseEj", watchdog, kPeriod);
        const char* const start = "_ZN4velm8Watchdog5StartEP6HWND__PNS_15WatchdogCheckerE";
        EXPECT_EQ(Call<ErrorCode>(start, watchdog, window, checker), 0U);
    }

    void ConvertPicture() const {
        unsigned char plane = 0;
        unsigned int argb = 0;
        Call<void>("_ZN4velm22Yuv420ToArgb8888_BT601EPhS0_S0_jjiiPjj", &plane, &plane, &plane, 1U, 1U, 1, 1,
                   &argb, 4U);
    }

    /// Whether the library is spared the notices of threads.
    bool IsSparedThreads() const { return DisableThreadLibraryCalls(m_module) != FALSE; }

    void OpenMemoryInfo() const {
        void* const memory = Call<void*>("_ZN4velm10MemoryInfo11GetInstanceEv");
        EXPECT_EQ(Call<ErrorCode>("_ZN4velm10MemoryInfo10InitializeEPKc", memory, ""), 0U);
    }

private:
    std::wstring m_path;
    HMODULE m_module;
};

}  // namespace velm
