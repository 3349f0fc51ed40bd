#include <windows.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include "MessageLoop.h"
#include "velm/posix/Control.h"
#include "velm/WindowsUtil.h"

namespace {

thread_local bool t_freeSetsError = false;

}  // namespace

// A heap that leaves an error behind as it frees, as Windows' may.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return std::malloc(size);
}

void operator delete[](void* block) noexcept {
    std::free(block);
    if (t_freeSetsError) {
        SetLastError(12345);
    }
}

void* operator new[](std::size_t size) {
    if (void* const block = std::malloc(size)) {
        return block;
    }
    throw std::bad_alloc();
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

/// A wrapper with texts, and the call that it makes.
struct Wrapper {
    const char* call;
    std::function<long long()> run;
};

std::vector<Wrapper> Wrappers(HWND window) {
    static wchar_t value[10];
    return {
        {"LoadLibraryW", [] { return WindowsUtil::CallLoadLibrary("lib") != nullptr; }},
        {"LoadImageW", [] { return WindowsUtil::CallLoadImage(nullptr, "image", 1, 2, 3, 4) != nullptr; }},
        {"OutputDebugStringW", [] { return WindowsUtil::CallOutputDebugString("text"), 0; }},
        {"MessageBoxW", [=] { return WindowsUtil::CallMessageBox(window, "text", "caption", 5); }},
        {"GetPrivateProfileStringW",
         [] { return WindowsUtil::CallGetPrivateProfileString("s", "k", "d", value, 10, "f"); }},
        {"GetPrivateProfileIntW", [] { return WindowsUtil::CallGetPrivateProfileInt("s", "k", 5, "f"); }},
        {"TextOutW", [] { return WindowsUtil::CallTextOut(nullptr, 1, 2, "text", 4); }},
        {"SetWindowTextW", [=] { return WindowsUtil::CallSetWindowText(window, "text"); }},
    };
}

TEST_F(WindowsUtilPosixTest, TheLastErrorOfTheCallSurvivesTheCleanUp) {
    const UniqueWindow window = MakeWindow();
    char buffer[40];
    std::vector<Wrapper> wrappers = Wrappers(window.get());
    wrappers.push_back(
        {"GetClassNameW", [&] { return WindowsUtil::CallGetClassName(window.get(), buffer, 40); }});
    wrappers.push_back(
        {"WideCharToMultiByte", [&] { return WindowsUtil::CallGetClassName(window.get(), buffer, 40); }});
    for (const Wrapper& wrapper : wrappers) {
        if (std::string(wrapper.call).find("Profile") != std::string::npos) {
            continue;  // these two report nothing
        }
        SCOPED_TRACE(wrapper.call);
        posix::FailCall(wrapper.call, ERROR_ACCESS_DENIED);
        t_freeSetsError = true;
        SetLastError(0);
        EXPECT_EQ(wrapper.run(), 0);
        t_freeSetsError = false;
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    }
}

TEST_F(WindowsUtilPosixTest, ArgumentsArriveInTheirPlaces) {
    const UniqueWindow window = MakeWindow();
    for (const Wrapper& wrapper : Wrappers(window.get())) {
        wrapper.run();
    }
    // Two UTF-16 units in place of four bytes: the count goes through as it is.
    WindowsUtil::CallTextOut(nullptr, -1, -2, "\xF0\x9F\x98\x80x", 2);
    struct Case {
        const char* call;
        std::vector<std::wstring> texts;
        std::vector<long long> numbers;
    };
    const Case kCases[] = {
        {"LoadImageW", {L"image"}, {1, 2, 3, 4}},
        {"OutputDebugStringW", {L"text"}, {}},
        {"MessageBoxW", {L"text", L"caption"}, {5}},
        {"TextOutW", {L"text"}, {1, 2}},
        {"SetWindowTextW", {L"text"}, {}},
        {"TextOutW", {{wchar_t(0xD83D), wchar_t(0xDE00)}}, {-1, -2}},
    };
    const auto shown = posix::ShownCalls();
    ASSERT_EQ(shown.size(), std::size(kCases));
    for (std::size_t i = 0; i < shown.size(); ++i) {
        EXPECT_EQ(shown[i].name, kCases[i].call);
        EXPECT_EQ(shown[i].texts, kCases[i].texts) << shown[i].name;
        EXPECT_EQ(shown[i].numbers, kCases[i].numbers) << shown[i].name;
    }
    EXPECT_EQ(WindowsUtil::CallMessageBox(nullptr, "", std::string(1'000'000, 'x').c_str(), 0), IDOK);
    EXPECT_EQ(posix::ShownCalls().back().texts[1].size(), 1'000'000U);
}

TEST_F(WindowsUtilPosixTest, ClassNamesOutsideAsciiCountInBytes) {
    const UniqueWindow window = MakeWindow(L"\u00E4\u20AC");
    char buffer[7] = "??????";
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer, 5), 5);
    EXPECT_STREQ(buffer, "\xC3\xA4\xE2\x82\xAC?");
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer, 4), 0);
}

TEST_F(WindowsUtilPosixTest, PathsNearTheLimitOf260) {
    // "D:\" and folders of a length, then the executable.
    const auto executable = [](std::size_t units, wchar_t letter) {
        return L"D:\\" + std::wstring(units - 9, letter) + L"\\a.exe";
    };
    struct Case {
        const char* name;
        std::wstring path;
        bool found;
        std::string folder;
    };
    const Case kCases[] = {
        {"ASCII, 258", executable(258, L'x'), true, "D:\\" + std::string(249, 'x')},
        {"ASCII, 259", executable(259, L'x'), true, "D:\\" + std::string(250, 'x')},
        // Cut by the system, so the folder is still whole.
        {"ASCII, 260", executable(260, L'x'), true, "D:\\" + std::string(251, 'x')},
        {"ASCII, cut within the folder", executable(400, L'x'), true, "D:"},
        {"umlauts, 259 bytes", executable(134, L'\u00FC'), true, ""},
        {"umlauts, too many bytes", executable(200, L'\u00FC'), false, ""},
        {"a folder with umlauts", L"D:\\Spiele\\Gr\u00FC\u00DFe\\a.exe", true,
         "D:\\Spiele\\Gr\xC3\xBC\xC3\x9F"
         "e"},
        {"no folder", L"a.exe", true, "."},
        {"no path", L"", false, ""},
    };
    for (const Case& test : kCases) {
        SCOPED_TRACE(test.name);
        posix::SetExecutablePath(test.path);
        std::string path = "unchanged";
        if (!test.found) {
            EXPECT_EQ(WindowsUtil::GetFullPathForResourcesDirFile(path, "b"), VELM_ERROR_UTIL_INVALID_PARAM);
            EXPECT_EQ(path, "unchanged");
            continue;
        }
        EXPECT_EQ(WindowsUtil::GetFullPathForResourcesDirFile(path, "b"), 0U);
        if (!test.folder.empty()) {
            EXPECT_EQ(path, test.folder + "\\resources\\b");
        }
    }
}

posix::Display Screen(int number, int width, int height, DWORD flags = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP) {
    return {L"\\\\.\\DISPLAY" + std::to_wstring(number), flags, width, height};
}

TEST_F(WindowsUtilPosixTest, ScreensCountAsFarAsTheyMatch) {
    constexpr DWORD kDetached = 0;
    constexpr DWORD kPrimary = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | DISPLAY_DEVICE_PRIMARY_DEVICE;
    std::vector<posix::Display> seventeen;
    for (int i = 0; i < 17; ++i) {
        seventeen.push_back(Screen(i, 100 + i, 200 + i));
    }
    struct Case {
        const char* name;
        std::vector<posix::Display> displays;
        unsigned long stateFlags;
        int width;
        int height;
        unsigned int failedContexts = 0;
    };
    const Case kCases[] = {
        {"none", {}, 0, 0, 0},
        {"width and height of two", {Screen(1, 1920, 1080), Screen(2, 1280, 1440)}, 0, 1920, 1440},
        {"detached", {Screen(1, 800, 600), Screen(2, 4000, 3000, kDetached)}, 0, 800, 600},
        {"only the primary",
         {Screen(1, 1920, 1080), Screen(2, 800, 600, kPrimary)},
         DISPLAY_DEVICE_PRIMARY_DEVICE,
         800,
         600},
        {"one of two flags", {Screen(1, 800, 600, kPrimary)}, DISPLAY_DEVICE_PRIMARY_DEVICE | 0x8, 0, 0},
        {"the seventeenth", seventeen, 0, 115, 215},
        {"no context", {Screen(1, 1920, 1080), Screen(2, 800, 600)}, 0, 800, 600, 1},
    };
    for (const Case& test : kCases) {
        SCOPED_TRACE(test.name);
        posix::SetDisplays(test.displays);
        posix::FailCall("CreateDCW", ERROR_GEN_FAILURE, 0, test.failedContexts);
        int width = -1;
        int height = -1;
        EXPECT_EQ(WindowsUtil::GetMaxScreenSize(&width, &height, test.stateFlags), 0U);
        EXPECT_EQ(width, test.width);
        EXPECT_EQ(height, test.height);
        EXPECT_EQ(posix::OpenDeviceContexts(), 0U);
    }
}

}  // namespace
}  // namespace velm
