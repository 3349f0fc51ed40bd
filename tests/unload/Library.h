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
    virtual bool IsActive() { return true; }
};

class Checker : public WatchdogChecker {
public:
    bool IsActive() override {
        ++m_asked;
        return true;
    }
    int Asked() const { return m_asked; }

private:
    int m_asked = 0;
};

inline std::wstring LibraryPath() {
    wchar_t path[4096];
    const std::wstring executable(path, GetModuleFileNameW(nullptr, path, 4096));
    return executable.substr(0, executable.find_last_of(L"\\/") + 1) + VELM_UTIL_LIBRARY;
}

class Library {
public:
    Library() : m_module(LoadLibraryW(LibraryPath().c_str())) {}
    ~Library() { Free(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    bool IsLoaded() const { return m_module != nullptr; }

    /// Frees the library; true when it has left the process.
    bool Free() {
        if (m_module != nullptr) {
            FreeLibrary(m_module);
            m_module = nullptr;
        }
        return GetModuleHandleW(LibraryPath().c_str()) == nullptr;
    }

    template <typename Result, typename... Arguments>
    Result Call(const char* name, Arguments... arguments) const {
        void* const address = reinterpret_cast<void*>(GetProcAddress(m_module, name));
        EXPECT_NE(address, nullptr) << name;
        return reinterpret_cast<Result (*)(Arguments...)>(address)(arguments...);
    }

    void* StartWatchdog(HWND window, Checker* checker) const {
        void* const watchdog = Call<void*>("_ZN4velm8Watchdog11GetInstanceEv");
        Call<void>("_ZN4velm8Watchdog9SetElapseEj", watchdog, kPeriod);
        EXPECT_EQ(Call<ErrorCode>("_ZN4velm8Watchdog5StartEP6HWND__PNS_15WatchdogCheckerE", watchdog, window,
                                  static_cast<WatchdogChecker*>(checker)),
                  0U);
        return watchdog;
    }

    void OpenMemoryInfo() const {
        void* const memory = Call<void*>("_ZN4velm10MemoryInfo11GetInstanceEv");
        EXPECT_EQ(Call<ErrorCode>("_ZN4velm10MemoryInfo10InitializeEPKc", memory, ""), 0U);
    }

private:
    HMODULE m_module;
};

}  // namespace velm
