/// @file
/// The process services and the call wrappers against the real windows, screens, files and processes.
#include <windows.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>

#include "velm/LoadClassPointerFromDll.h"
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
    double seconds = 0;
    std::string output;
};

ProcessResult RunProcess(const fs::path& program, const std::wstring& arguments) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    // A console's host inherits the file too and may keep it open for longer.
    const fs::path outputFile = fs::absolute("output.txt");
    ProcessResult result;
    {
        const UniqueHandle output(CreateFileW(outputFile.c_str(), GENERIC_WRITE,
                                              FILE_SHARE_READ | FILE_SHARE_WRITE, &inherit, CREATE_ALWAYS,
                                              FILE_ATTRIBUTE_NORMAL, nullptr));
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = output.get();
        startup.hStdError = output.get();
        PROCESS_INFORMATION process{};
        std::wstring commandLine = L'"' + program.wstring() + L"\" " + arguments;
        const auto start = std::chrono::steady_clock::now();
        if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                            &startup, &process)) {
            return result;
        }
        const UniqueHandle handle(process.hProcess);
        const UniqueHandle thread(process.hThread);
        WaitForSingleObject(handle.get(), 60'000);
        result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        GetExitCodeProcess(handle.get(), &result.exitCode);
    }
    std::ifstream file(outputFile, std::ios::binary);
    result.output.assign(std::istreambuf_iterator<char>(file), {});
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

TEST(Plumbing, WatchEndsWithTheWatchdogsCodeWhenTheWorkerStalls) {
    const fs::path velmdiag = BesideTheTest(L"velmdiag.exe");
    const ProcessResult stalled = RunProcess(velmdiag, L"watch --for 6s --stall-after 2s");
    EXPECT_EQ(stalled.exitCode, 16U) << stalled.output;
    EXPECT_GE(stalled.seconds, 2.0);
    EXPECT_LE(stalled.seconds, 4.0);
    EXPECT_EQ(
        RunProcess(velmdiag, L"watch --for 3s --stall-after 500ms --period 100ms --exit-code 259").exitCode,
        259U);
    EXPECT_EQ(RunProcess(velmdiag, L"watch --for 1s").exitCode, 0U);
}

TEST(Plumbing, APluginLoadsFromAFolderOutsideAscii) {
    const fs::path file = fs::absolute(L"Gr\u00FC\u00DFe") / L"plug\u00EFn.dll";
    fs::create_directories(file.parent_path());
    CopyFileW(BesideTheTest(L"sample_plugin.dll").c_str(), file.c_str(), FALSE);
    LoadClassPointerFromDll plugin;
    void* object = nullptr;
    EXPECT_EQ(plugin.Initialize(Utf8(file.wstring()).c_str(), &object), 0);
    EXPECT_NE(GetModuleHandleW(file.c_str()), nullptr);
    plugin.Terminate();
    EXPECT_EQ(GetModuleHandleW(file.c_str()), nullptr);
}

// The box stands until another thread finds it by its caption and presses its button.
TEST(Plumbing, AMessageBoxShowsItsTexts) {
    std::wstring texts;
    std::thread reader([&] {
        HWND box = nullptr;
        for (int i = 0; i < 1000 && box == nullptr; ++i) {
            Sleep(10);
            box = FindWindowW(L"#32770", L"\u00DCberschrift");
        }
        HWND label = nullptr;
        while ((label = FindWindowExW(box, label, L"Static", nullptr)) != nullptr) {
            wchar_t text[20] = {};
            SendMessageW(label, WM_GETTEXT, 20, reinterpret_cast<LPARAM>(text));
            texts += text;
        }
        PostMessageW(box, WM_COMMAND, IDYES, 0);
    });
    const std::string caption = Utf8(L"\u00DCberschrift");
    EXPECT_EQ(
        WindowsUtil::CallMessageBox(nullptr, Utf8(L"Gr\u00FC\u00DFe").c_str(), caption.c_str(), MB_YESNO),
        IDYES);
    reader.join();
    EXPECT_EQ(texts, L"Gr\u00FC\u00DFe");
}

std::wstring g_debugText;

/// Debug text travels as an exception, in UTF-16 or, before Windows 10, in the system's own code page.
LONG CALLBACK CatchDebugText(EXCEPTION_POINTERS* exception) {
    constexpr DWORD kWideDebugText = 0x4001000A;
    constexpr DWORD kDebugText = 0x40010006;
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    const ULONG_PTR text = record.ExceptionInformation[1];
    if (record.ExceptionCode == kWideDebugText) {
        g_debugText = reinterpret_cast<const wchar_t*>(text);
    } else if (record.ExceptionCode == kDebugText) {
        wchar_t wide[100] = {};
        MultiByteToWideChar(CP_ACP, 0, reinterpret_cast<const char*>(text), -1, wide, 99);
        g_debugText = wide;
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

TEST(Plumbing, DebugTextArrivesWhole) {
    void* const handler = AddVectoredExceptionHandler(1, &CatchDebugText);
    WindowsUtil::CallOutputDebugString(Utf8(L"Gr\u00FC\u00DFe\n").c_str());
    RemoveVectoredExceptionHandler(handler);
    EXPECT_EQ(g_debugText, L"Gr\u00FC\u00DFe\n");
}

}  // namespace
}  // namespace velm
