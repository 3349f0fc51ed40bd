/// @file
/// Runs in a folder that holds PlantedLibrary.cpp as avrt.dll, in a process where Wine's own may not stand in
/// for a file.
#include <windows.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "velm/Scheduling.h"

namespace {

namespace fs = std::filesystem;

/// Takes avrt.dll out of the system's folder, as on a Windows without its media features.
class WithoutSystemLibrary {
public:
    WithoutSystemLibrary() {
        if (!fs::exists(m_aside)) {  // it does when an earlier run was killed
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

TEST(DelayLoad, RunsNoLibraryOfTheCurrentFolder) {
    const WithoutSystemLibrary missing;
    SchedulingThread scheduling;
    EXPECT_FALSE(scheduling.StartThreadPriorityHigh());
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(GetModuleHandleW(L"avrt.dll"), nullptr);
    EXPECT_NE(LoadLibraryW(L"avrt.dll"), nullptr) << "nothing is planted";
}

}  // namespace
