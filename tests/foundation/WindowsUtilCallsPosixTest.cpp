#include <windows.h>
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <utility>
#include <vector>

#include "MessageLoop.h"
#include "velm/posix/Control.h"
#include "velm/WindowsUtil.h"

// A heap whose free changes the last error, as that of Windows may.
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return operator new(size, std::nothrow);
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void operator delete[](void* block) noexcept {
    operator delete(block);
    SetLastError(12345);
}
void operator delete[](void* block, std::size_t) noexcept {
    operator delete[](block);
}

namespace velm::windows_util_calls_posix_test {

class WindowsUtilPosixTest : public testing::Test {
protected:
    void SetUp() override { posix::StartRecording(); }
    void TearDown() override { posix::Reset(); }
};

TEST_F(WindowsUtilPosixTest, CleanUpKeepsTheLastError) {
    const test::UniqueWindow window = test::MakeWindow();
    for (const char* const call : {"SetWindowTextW", "GetClassNameW", "WideCharToMultiByte"}) {
        posix::FailCall(call, ERROR_ACCESS_DENIED);
        char buffer[40];
        EXPECT_EQ(std::strcmp(call, "SetWindowTextW") == 0
                      ? WindowsUtil::CallSetWindowText(window.get(), "text")
                      : WindowsUtil::CallGetClassName(window.get(), buffer, 40),
                  0);
        EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED) << call;
    }
}

TEST_F(WindowsUtilPosixTest, PassesArgumentsInOrder) {
    const test::UniqueWindow window = test::MakeWindow();
    WindowsUtil::CallLoadImage(nullptr, "image", 1, 2, 3, 4);
    WindowsUtil::CallOutputDebugString("text");
    WindowsUtil::CallMessageBox(window.get(), "text", "caption", 5);
    EXPECT_EQ(WindowsUtil::CallMessageBox(window.get(), "text", nullptr, 5), 0) << "without a text";
    WindowsUtil::CallSetWindowText(window.get(), "text");
    // Four bytes become two UTF-16 units; the count is passed on unchanged.
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

TEST_F(WindowsUtilPosixTest, WritesOnlyNamesThatFit) {
    const test::UniqueWindow window = test::MakeWindow(L"\u00E4\u20AC");
    // The wide name is cut to size - 1 units before it is converted.
    for (const auto& [size, result] : {std::pair{-1, 0}, {0, 0}, {1, 0}, {2, 2}, {5, 5}, {6, 5}}) {
        SCOPED_TRACE(size);
        std::string buffer(7, '?');
        EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer.data(), size), result);
        const auto written = static_cast<std::size_t>(result);
        EXPECT_EQ(buffer, std::string("\xC3\xA4\xE2\x82\xAC", written) + std::string(7 - written, '?'));
    }
    char tooSmall[4];
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), tooSmall, 4), 0);
    for (const char* const call : {"GetModuleFileNameW", "WideCharToMultiByte"}) {
        posix::FailCall(call, ERROR_ACCESS_DENIED);
        char path[500] = "old";
        EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, path, sizeof path), 0U) << call;
        EXPECT_STREQ(path, "old") << call;
    }
}

TEST_F(WindowsUtilPosixTest, HandlesPathsNearTheLimit) {
    // "D:\" and folders of the given length, then the executable.
    const auto executable = [](std::size_t units, wchar_t letter) {
        return L"D:\\" + std::wstring(units - 9, letter) + L"\\a.exe";
    };
    const struct {
        const char* what;
        std::wstring file;
        std::string folder;  // empty: an error
    } rows[] = {
        {"truncated after the folder", executable(260, L'x'), "D:\\" + std::string(251, 'x')},
        {"259 bytes", executable(256, L'x') + L"\u20AC", "D:\\" + std::string(247, 'x')},
        {"too many bytes", executable(200, L'\u00FC'), ""},
        {"no folder", L"a.exe", "."},
    };
    for (const auto& [what, file, folder] : rows) {
        SCOPED_TRACE(what);
        posix::SetExecutablePath(file);
        std::string path = "unchanged";
        const ErrorCode result = WindowsUtil::GetFullPathForResourcesDirFile(path, "b");
        EXPECT_EQ(result, folder.empty() ? VELM_ERROR_UTIL_INVALID_PARAM : 0U);
        EXPECT_EQ(path, folder.empty() ? "unchanged" : folder + "\\resources\\b");
    }
}

TEST_F(WindowsUtilPosixTest, MeasuresMatchingScreens) {
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
    EXPECT_EQ(maxScreenSize(0), std::pair(1920, 1440)) << "not the largest of all attached displays";
    EXPECT_EQ(maxScreenSize(DISPLAY_DEVICE_PRIMARY_DEVICE), std::pair(1280, 1440));
    EXPECT_EQ(maxScreenSize(DISPLAY_DEVICE_PRIMARY_DEVICE | 0x8), std::pair(0, 0))
        << "counted a display that has only one of the two flags";
    std::vector<posix::Display> seventeen(15, screen(1, 1));
    seventeen.push_back(screen(115, 215));
    seventeen.push_back(screen(116, 216));
    posix::SetDisplays(seventeen);
    EXPECT_EQ(maxScreenSize(0), std::pair(115, 215)) << "the limit is sixteen";
}

}  // namespace velm::windows_util_calls_posix_test
