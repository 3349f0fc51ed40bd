#include <windows.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "MessageLoop.h"
#include "velm/posix/Control.h"
#include "velm/WindowsUtil.h"

namespace {

thread_local bool t_freeSetsError = false;

}  // namespace

// A heap that leaves an error behind as it frees, as Windows' may.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return operator new(size, std::nothrow);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete[](void* block) noexcept {
    operator delete(block);
    if (t_freeSetsError) {
        SetLastError(12345);
    }
}
void operator delete[](void* block, std::size_t) noexcept {
    operator delete[](block);
}

namespace velm {
namespace {

class WindowsUtilPosixTest : public testing::Test {
protected:
    void SetUp() override { posix::StartRecording(); }
    void TearDown() override {
        t_freeSetsError = false;
        posix::Reset();
    }
};

TEST_F(WindowsUtilPosixTest, TheLastErrorOfTheCallSurvivesTheCleanUp) {
    const UniqueWindow window = MakeWindow();
    char buffer[40];
    const auto setText = [&] { return WindowsUtil::CallSetWindowText(window.get(), "text"); };
    const auto getClassName = [&] { return WindowsUtil::CallGetClassName(window.get(), buffer, 40); };
    const std::pair<const char*, std::function<int()>> wrappers[] = {
        {"SetWindowTextW", setText}, {"GetClassNameW", getClassName}, {"WideCharToMultiByte", getClassName}};
    for (const auto& [call, wrapper] : wrappers) {
        posix::FailCall(call, ERROR_ACCESS_DENIED);
        t_freeSetsError = true;
        EXPECT_EQ(wrapper(), 0);
        t_freeSetsError = false;
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED) << call;
    }
}

TEST_F(WindowsUtilPosixTest, ArgumentsArriveInTheirPlaces) {
    const UniqueWindow window = MakeWindow();
    WindowsUtil::CallLoadImage(nullptr, "image", 1, 2, 3, 4);
    WindowsUtil::CallOutputDebugString("text");
    WindowsUtil::CallMessageBox(window.get(), "text", "caption", 5);
    WindowsUtil::CallSetWindowText(window.get(), "text");
    // Two UTF-16 units in place of four bytes: the count goes through as it is.
    WindowsUtil::CallTextOut(nullptr, -1, -2, "\xF0\x9F\x98\x80x", 2);
    std::wstring shown;
    for (const posix::ShownCall& call : posix::ShownCalls()) {
        shown.append(call.name.begin(), call.name.end());
        for (const std::wstring& text : call.texts) {
            shown += L' ' + text;
        }
        for (const long long number : call.numbers) {
            shown += L' ' + std::to_wstring(number);
        }
        shown += L'\n';
    }
    EXPECT_EQ(shown,
              L"LoadImageW image 1 2 3 4\n"
              L"OutputDebugStringW text\n"
              L"MessageBoxW text caption 5\n"
              L"SetWindowTextW text\n"
              L"TextOutW \xD83D\xDE00 -1 -2\n");
}

TEST_F(WindowsUtilPosixTest, ClassNamesOutsideAsciiCountInBytes) {
    const UniqueWindow window = MakeWindow(L"\u00E4\u20AC");
    char buffer[7] = "??????";
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer, 5), 5);
    EXPECT_STREQ(buffer, "\xC3\xA4\xE2\x82\xAC?");
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer, 4), 0);
}

TEST_F(WindowsUtilPosixTest, AModuleFileNameThatFailsLeavesTheBuffer) {
    for (const char* const call : {"GetModuleFileNameW", "WideCharToMultiByte"}) {
        posix::FailCall(call, ERROR_ACCESS_DENIED);
        char buffer[500] = "old";
        EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer, sizeof buffer), 0U) << call;
        EXPECT_STREQ(buffer, "old") << call;
    }
}

TEST_F(WindowsUtilPosixTest, PathsNearTheLimitOf260) {
    // "D:\" and folders of a length, then the executable.
    const auto executable = [](std::size_t units, wchar_t letter) {
        return L"D:\\" + std::wstring(units - 9, letter) + L"\\a.exe";
    };
    const std::pair<std::wstring, std::string> cases[] = {
        // of executables and their folders
        {executable(259, L'x'), "D:\\" + std::string(250, 'x')},
        // Cut by the system, where the folder is still whole, and within it.
        {executable(260, L'x'), "D:\\" + std::string(251, 'x')},
        {executable(400, L'x'), "D:"},
        // In bytes: 259, and too many.
        {executable(256, L'x') + L"\u20AC", "D:\\" + std::string(247, 'x')},
        {executable(200, L'\u00FC'), ""},
        {executable(10, L'\u00FC'), "D:\\\xC3\xBC"},
        {L"a.exe", "."},
    };
    for (const auto& [file, folder] : cases) {
        SCOPED_TRACE(file.size());
        posix::SetExecutablePath(file);
        std::string path = "unchanged";
        const ErrorCode result = WindowsUtil::GetFullPathForResourcesDirFile(path, "b");
        EXPECT_EQ(result, folder.empty() ? VELM_ERROR_UTIL_INVALID_PARAM : 0U);
        EXPECT_EQ(path, folder.empty() ? "unchanged" : folder + "\\resources\\b");
    }
}

TEST_F(WindowsUtilPosixTest, ScreensCountAsFarAsTheyMatch) {
    const auto screen = [](int width, int height, DWORD flags = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) {
        return posix::Display{L"\\\\.\\DISPLAY" + std::to_wstring(width), flags, width, height};
    };
    const auto maxScreenSize = [](unsigned long stateFlags) {
        std::pair<int, int> size;
        EXPECT_EQ(WindowsUtil::GetMaxScreenSize(&size.first, &size.second, stateFlags), 0U);
        return size;
    };
    constexpr DWORD kPrimary = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | DISPLAY_DEVICE_PRIMARY_DEVICE;
    posix::SetDisplays({screen(1920, 1080), screen(1280, 1440, kPrimary), screen(4000, 3000, 0)});
    EXPECT_EQ(maxScreenSize(0), std::pair(1920, 1440)) << "of all that are attached";
    EXPECT_EQ(maxScreenSize(DISPLAY_DEVICE_PRIMARY_DEVICE), std::pair(1280, 1440));
    EXPECT_EQ(maxScreenSize(DISPLAY_DEVICE_PRIMARY_DEVICE | 0x8), std::pair(0, 0)) << "one of two flags";
    std::vector<posix::Display> seventeen;
    for (int i = 0; i < 17; ++i) {
        seventeen.push_back(screen(100 + i, 200 + i));
    }
    posix::SetDisplays(seventeen);
    EXPECT_EQ(maxScreenSize(0), std::pair(115, 215)) << "sixteen are looked at";
}

TEST_F(WindowsUtilPosixTest, OemTextFollowsTheSystemsCodePage) {
    posix::SetOemCodePage(932);
    std::string out;
    EXPECT_EQ(WindowsUtil::GetUtf8StringFromOemcpString("\x82\xA0\xB1", out), 0U);
    EXPECT_EQ(out, "\xE3\x81\x82\xEF\xBD\xB1");
    EXPECT_EQ(WindowsUtil::GetOemcpStringFromUtf8String(out, out), 0U);
    EXPECT_EQ(out, "\x82\xA0\xB1");
}

}  // namespace
}  // namespace velm
