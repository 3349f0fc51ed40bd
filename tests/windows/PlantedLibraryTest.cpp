/// @file
/// Runs in a folder where PlantedLibrary.cpp is avrt.dll, and where Wine must not substitute its own.
#include <windows.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "velm/Scheduling.h"

namespace {

namespace fs = std::filesystem;

/// Moves avrt.dll out of the system folder, like a Windows without media features.
class WithoutSystemLibrary {
public:
    WithoutSystemLibrary() {
        if (!fs::exists(m_aside)) {  // left behind by a run that was killed
            fs::rename(m_library, m_aside);
        }
    }
    ~WithoutSystemLibrary() { fs::rename(m_aside, m_library); }

private:
    static fs::path SystemFolder() {
        wchar_t path[MAX_PATH];
        GetSystemDirectoryW(path, MAX_PATH);
        return path;
    }

    const fs::path m_library = SystemFolder() / L"avrt.dll";
    const fs::path m_aside = SystemFolder() / L"avrt.dll.aside";
};

TEST(DelayLoad, LoadsNothingFromTheCurrentFolder) {
    const WithoutSystemLibrary missing;
    SchedulingThread scheduling;
    EXPECT_FALSE(scheduling.StartThreadPriorityHigh());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(GetModuleHandleW(L"avrt.dll"), nullptr);
    EXPECT_NE(LoadLibraryW(L"avrt.dll"), nullptr) << "no library is planted";
}

}  // namespace
