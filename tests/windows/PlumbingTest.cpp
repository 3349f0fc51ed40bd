/// @file
/// The process services and the call wrappers against the real screens, files and processes.
#include <windows.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

#include "velm/AudioFrameStream.h"
#include "velm/core/Semaphore.h"
#include "velm/WindowsUtil.h"

namespace velm {
namespace {

namespace fs = std::filesystem;

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using UniqueHandle = std::unique_ptr<void, HandleCloser>;

struct ProcessResult {
    DWORD exitCode = ~0U;
    std::string output;
};

ProcessResult RunProcess(const fs::path& program, const std::wstring& arguments) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    // A console's host inherits the file too and may keep it open for longer.
    const fs::path outputFile = fs::absolute("output.txt");
    const UniqueHandle output(CreateFileW(outputFile.c_str(), GENERIC_WRITE,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL, nullptr));
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = startup.hStdError = output.get();
    PROCESS_INFORMATION process{};
    std::wstring commandLine = L'"' + program.wstring() + L"\" " + arguments;
    ProcessResult result;
    if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                       &startup, &process)) {
        const UniqueHandle handle(process.hProcess);
        const UniqueHandle thread(process.hThread);
        WaitForSingleObject(handle.get(), 60'000);
        GetExitCodeProcess(handle.get(), &result.exitCode);
        std::ifstream file(outputFile, std::ios::binary);
        result.output.assign(std::istreambuf_iterator<char>(file), {});
    }
    return result;
}

fs::path BesideTheTest(const wchar_t* name) {
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path() / name;
}

std::string Utf8(const std::wstring& text) {
    std::string utf8;
    WindowsUtil::GetUtf8StringFromWstring(text, utf8);
    return utf8;
}

/// What velmdiag shows after a label.
std::string Line(const std::string& output, const std::string& label) {
    const std::size_t start = output.find(label);
    if (start == output.npos) {
        return "(no " + label + ") " + output;
    }
    const std::size_t value = output.find_first_not_of(' ', start + label.size());
    return output.substr(value, output.find_first_of("\r\n", value) - value);
}

TEST(Plumbing, PathsHoldForFoldersOutsideAsciiAndNearTheLimit) {
    const fs::path here = fs::absolute(".");
    const fs::path padding = here / std::wstring(60, L'a') / L"";
    const std::size_t left = 240 - padding.wstring().size() - 13;  // of 240 units for the executable
    for (const fs::path& path : {here / L"Spiele" / L"Gr\u00FC\u00DFe", here / L"\u65E5\u672C\u8A9E \u00E4",
                                 padding / std::wstring(left, L'b')}) {
        const std::string folder = Utf8(path.wstring());
        SCOPED_TRACE(folder);
        fs::create_directories(path);
        for (const wchar_t* const file : {L"velmdiag.exe", L"VelmUtil.dll", L"VelmCore.dll"}) {
            CopyFileW(BesideTheTest(file).c_str(), (path / file).c_str(), FALSE);
        }
        const ProcessResult result = RunProcess(path / L"velmdiag.exe", L"system");
        EXPECT_EQ(result.exitCode, 0U);
        EXPECT_EQ(Line(result.output, "\nexecutable"), folder + "\\velmdiag.exe");
        EXPECT_EQ(Line(result.output, "\nresources"), folder + "\\resources\\");
    }
}

TEST(Plumbing, TheScreenIsTheSystemsOwn) {
    int width = 0;
    int height = 0;
    ASSERT_EQ(WindowsUtil::GetMaxScreenSize(&width, &height, 0), 0U);
    EXPECT_EQ(width, GetSystemMetrics(SM_CXSCREEN));
    EXPECT_EQ(height, GetSystemMetrics(SM_CYSCREEN));
    EXPECT_EQ(WindowsUtil::GetMaxScreenSize(&width, &height, DISPLAY_DEVICE_MIRRORING_DRIVER), 0U);
    EXPECT_EQ(width, 0);
}

TEST(Plumbing, WatchEndsWithTheExitCodeWhenTheWorkerStalls) {
    const wchar_t* const arguments = L"watch --for 60s --stall-after 300ms --period 100ms --exit-code 259";
    EXPECT_EQ(RunProcess(BesideTheTest(L"velmdiag.exe"), arguments).exitCode, 259U);
}

UniqueHandle StartThread(const std::function<void()>& function) {
    const auto run = [](void* call) -> DWORD { return (*static_cast<std::function<void()>*>(call))(), 0; };
    UniqueHandle thread(CreateThread(nullptr, 0, run, new std::function(function), 0, nullptr));
    Sleep(100);  // until it blocks
    return thread;
}

// The child of the next test: the end of its process kills a thread that waits for a library's static object.
TEST(KilledWaiter, DISABLED_EndsWithAStaticStream) {
    const HMODULE library = LoadLibraryW(BesideTheTest(L"static_stream.dll").c_str());
    ASSERT_NE(library, nullptr);
    StartThread(reinterpret_cast<void (*)()>(reinterpret_cast<void*>(GetProcAddress(library, "Block"))));
    std::printf("ends at %llu\n", GetTickCount64());
}

TEST(KilledWaiter, LetsTheProcessEnd) {
    const ProcessResult result =
        RunProcess(BesideTheTest(L"windows_test.exe"),
                   L"--gtest_also_run_disabled_tests --gtest_filter=KilledWaiter.DISABLED*");
    EXPECT_EQ(result.exitCode, 0U);
    EXPECT_LT(GetTickCount64() - std::stoull("0" + Line(result.output, "ends at")), 1000U);
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

}  // namespace
}  // namespace velm
