/// @file
/// Paths, screens, and the end of threads and processes, on the real system.
#include <windows.h>

#include <gtest/gtest.h>
#include <process.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>

#include "velm/AudioFrameStream.h"
#include "velm/core/Semaphore.h"
#include "velm/WindowsUtil.h"

namespace velm::plumbing_test {

namespace fs = std::filesystem;

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

fs::path BesideTheTest(const wchar_t* name) {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path() / name;
}

/// Runs disabled tests in a separate process and returns its exit code.
std::intptr_t RunDisabled(const fs::path& program, const std::wstring& tests) {
    return _wspawnl(_P_WAIT, program.c_str(), L"windows_test", L"--gtest_also_run_disabled_tests",
                    (L"--gtest_filter=" + tests).c_str(), nullptr);
}

// Not a test by itself: the next one runs it in copies of this program.
TEST(Paths, DISABLED_WriteTheResourcesFolder) {
    std::string folder;
    EXPECT_EQ(WindowsUtil::GetFullPathForResourcesDir(folder), 0U);
    std::ofstream("resources.txt") << folder;
}

TEST(Paths, WorkInUnicodeFoldersAndNearTheLimit) {
    const fs::path here = fs::absolute(".");
    const fs::path padding = here / std::wstring(60, L'a') / L"";
    const std::size_t left = 240 - padding.wstring().size() - 17;  // of 240 units for the executable
    for (const fs::path& path : {here / L"Spiele" / L"Gr\u00FC\u00DFe", here / L"\u65E5\u672C\u8A9E \u00E4",
                                 padding / std::wstring(left, L'b')}) {
        SCOPED_TRACE(path);
        fs::create_directories(path);
        for (const wchar_t* const file : {L"windows_test.exe", L"VelmUtil.dll", L"VelmCore.dll"}) {
            CopyFileW(BesideTheTest(file).c_str(), (path / file).c_str(), FALSE);
        }
        EXPECT_EQ(RunDisabled(path / L"windows_test.exe", L"Paths.DISABLED*"), 0);
        std::ifstream file("resources.txt");
        const std::string folder(std::istreambuf_iterator<char>(file), {});
        EXPECT_EQ(fs::path(std::u8string(folder.begin(), folder.end())), path / L"resources" / L"");
    }
}

TEST(Screens, MatchTheSystemMetrics) {
    int width = 0;
    int height = 0;
    ASSERT_EQ(WindowsUtil::GetMaxScreenSize(&width, &height, 0), 0U);
    EXPECT_EQ(width, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(height, GetSystemMetrics(SM_CYSCREEN));
    EXPECT_EQ(WindowsUtil::GetMaxScreenSize(&width, &height, DISPLAY_DEVICE_MIRRORING_DRIVER), 0U);
    EXPECT_EQ(width, 0);
}

TEST(Watchdog, EndsAStalledProcessWithTheExitCode) {
    EXPECT_EQ(
        _wspawnl(_P_WAIT, BesideTheTest(L"velmdiag.exe").c_str(), L"velmdiag", L"watch", L"--for", L"60s",
                 L"--stall-after", L"300ms", L"--period", L"100ms", L"--exit-code", L"259", nullptr),
        259);
}

UniqueHandle StartThread(const std::function<void()>& function) {
    const auto run = [](void* call) -> DWORD { return (*static_cast<std::function<void()>*>(call))(), 0; };
    UniqueHandle thread(CreateThread(nullptr, 0, run, new std::function(function), 0, nullptr));
    Sleep(100);  // by then it blocks
    return thread;
}

// Not a test by itself: the next one runs it in a process of its own, whose end kills a thread that waits for
// a static object of a library.
TEST(KilledWaiter, DISABLED_EndsWithAStaticStream) {
    const HMODULE library = LoadLibraryW(BesideTheTest(L"static_stream.dll").c_str());
    ASSERT_NE(library, nullptr);
    StartThread(reinterpret_cast<void (*)()>(reinterpret_cast<void*>(GetProcAddress(library, "Block"))));
    std::ofstream("ends-at.txt") << GetTickCount64();
}

TEST(KilledWaiter, LetsTheProcessEnd) {
    EXPECT_EQ(RunDisabled(BesideTheTest(L"windows_test.exe"), L"KilledWaiter.DISABLED*"), 0);
    ULONGLONG endsAt = 0;
    std::ifstream("ends-at.txt") >> endsAt;
    EXPECT_LT(GetTickCount64() - endsAt, 1000U);
}

TEST(KilledWaiter, DelaysDestructorsBriefly) {
    AudioFrameStream* const stream = new AudioFrameStream(4, 2, 1, 16);
    ASSERT_EQ(stream->Initialize(), 0U);
    Semaphore* const semaphore = new Semaphore(0, 1);
    const std::function<void()> waits[] = {[&] { stream->DropFrontFrame(); }, [&] { semaphore->Wait(); }};
    const std::function<void()> ends[] = {[&] { delete stream; }, [&] { delete semaphore; }};
    for (const int which : {0, 1}) {
        const UniqueHandle thread = StartThread(waits[which]);
        ASSERT_TRUE(TerminateThread(thread.get(), 0));
        WaitForSingleObject(thread.get(), INFINITE);
        const ULONGLONG before = GetTickCount64();
        const UniqueHandle ending = StartThread(ends[which]);
        ASSERT_EQ(WaitForSingleObject(ending.get(), 5000), WAIT_OBJECT_0);
        EXPECT_LT(GetTickCount64() - before, 1000U);
    }
}

}  // namespace velm::plumbing_test
