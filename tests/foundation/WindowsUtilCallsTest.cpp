#include <windows.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "MessageLoop.h"
#include "velm/FileStdio.h"
#include "velm/WindowsUtil.h"

namespace velm {
namespace {

std::wstring WindowText(HWND window) {
    std::vector<wchar_t> text(100'000);
    return {text.data(), static_cast<std::size_t>(GetWindowTextW(window, text.data(), 100'000))};
}

TEST(WindowsUtilCalls, WindowTextsOfAnyLengthArriveWhole) {
    const UniqueWindow window = MakeWindow();
    ASSERT_NE(window, nullptr);
    for (const auto& [utf8, utf16] : {std::pair<std::string, std::wstring>{"", L""},
                                      {"Gr\xC3\xBC\xC3\x9F"
                                       "e",
                                       L"Gr\u00FC\u00DF"
                                       L"e"},
                                      {"\xF0\x9F\x98\x80", std::wstring{wchar_t(0xD83D), wchar_t(0xDE00)}},
                                      {std::string(30'000, 'x'), std::wstring(30'000, L'x')}}) {
        EXPECT_NE(WindowsUtil::CallSetWindowText(window.get(), utf8.c_str()), 0);
        EXPECT_EQ(WindowText(window.get()), utf16);
    }
    WindowsUtil::CallSetWindowText(window.get(), "kept");
    EXPECT_EQ(WindowsUtil::CallSetWindowText(window.get(), nullptr), 0);
    EXPECT_EQ(WindowText(window.get()), L"kept");
}

TEST(WindowsUtilCalls, ANullTextMakesNoCall) {
    const UniqueWindow window = MakeWindow();
    wchar_t value[] = L"kept";
    // A box would wait for its button for ever.
    EXPECT_EQ(WindowsUtil::CallMessageBox(window.get(), "text", nullptr, 0), 0);
    EXPECT_EQ(WindowsUtil::CallMessageBox(window.get(), nullptr, "caption", 0), 0);
    EXPECT_EQ(WindowsUtil::CallLoadLibrary(nullptr), nullptr);
    EXPECT_EQ(WindowsUtil::CallLoadImage(nullptr, nullptr, 0, 0, 0, 0), nullptr);
    EXPECT_EQ(WindowsUtil::CallTextOut(nullptr, 0, 0, nullptr, 1), 0);
    WindowsUtil::CallOutputDebugString(nullptr);
    WindowsUtil::CallOutputDebugString(
        "Gr\xC3\xBC\xC3\x9F"
        "e\n");
    const char* const texts[] = {"section", "key", "default", "file"};
    for (std::size_t missing = 0; missing < std::size(texts); ++missing) {
        const char* given[4];
        for (std::size_t i = 0; i < std::size(texts); ++i) {
            given[i] = i == missing ? nullptr : texts[i];
        }
        EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString(given[0], given[1], given[2], value, 5, given[3]),
                  0U);
        if (missing != 2) {
            EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt(given[0], given[1], 5, given[3]), 5U);
            EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt(given[0], given[1], -3, given[3]), 0U);
        }
    }
    EXPECT_STREQ(value, L"kept");
}

TEST(WindowsUtilCalls, ProfileValuesComeFromUtf8Names) {
    FileStdio file;
    ASSERT_NE(file.Open("profile.ini", "wb"), nullptr);
    std::fputs("[numbers]\r\nseven=7\r\nminus=-7\r\n[texts]\r\nlong=", file.Get());
    const std::string longText(3'000, 'y');
    std::fputs((longText + "\r\n").c_str(), file.Get());
    file.Close();
    const char* const path = "./profile.ini";
    wchar_t value[4'000];
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt("numbers", "seven", 1, path), 7U);
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt("numbers", "minus", 1, path), 0xFFFFFFF9U);
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileInt("numbers", "none", -3, path), 0xFFFFFFFDU);
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "long", "", value, 4'000, path), 3'000U);
    EXPECT_EQ(value[2'999], L'y');
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "none", "\xC3\xA4", value, 4'000, path), 1U);
    EXPECT_STREQ(value, L"\u00E4");
    EXPECT_EQ(WindowsUtil::CallGetPrivateProfileString("texts", "long", "", value, 5, path), 4U);
}

TEST(WindowsUtilCalls, ClassNamesFitOrGiveNothing) {
    const UniqueWindow window = MakeWindow(L"STATIC");
    struct Case {
        int size;
        int result;
    };
    // The wide name is cut to size - 1 units before it is converted.
    for (const Case& test : {Case{-2147483647 - 1, 0}, Case{-1, 0}, Case{0, 0}, Case{1, 0}, Case{2, 1},
                             Case{6, 5}, Case{7, 6}, Case{8, 6}}) {
        SCOPED_TRACE(test.size);
        char buffer[9] = "????????";
        EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), buffer, test.size), test.result);
        EXPECT_EQ(std::string(buffer + test.result),
                  std::string(static_cast<std::size_t>(8 - test.result), '?'));
    }
    std::vector<char> large(1 << 20);
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), large.data(), 1 << 20), 6);
    EXPECT_EQ(WindowsUtil::CallGetClassName(window.get(), nullptr, 20), 0);
    EXPECT_EQ(WindowsUtil::CallGetClassName(nullptr, large.data(), 20), 0);
}

TEST(WindowsUtilCalls, ModuleFileNamesFitOrGiveNothing) {
    char whole[1000];
    const unsigned long length = WindowsUtil::CallGetModuleFileName(nullptr, whole, sizeof whole);
    ASSERT_GT(length, 4U);
    EXPECT_EQ(std::strlen(whole), length);
    EXPECT_NE(std::strstr(whole, "foundation_test"), nullptr) << whole;

    std::vector<char> buffer(length + 2, '?');
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length + 1), length);
    EXPECT_STREQ(buffer.data(), whole);
    buffer.assign(length + 2, '?');
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length), length);
    EXPECT_EQ(std::string(buffer.data()), std::string(whole, length - 1)) << "the NUL replaces the last byte";
    EXPECT_EQ(buffer[length], '?');
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), length - 1), 0U);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), 4), 0U);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, buffer.data(), 0), 0U);
    EXPECT_EQ(WindowsUtil::CallGetModuleFileName(nullptr, nullptr, 100), 0U);
}

TEST(WindowsUtilCalls, TheLastErrorIsThatOfTheCall) {
    SetLastError(0);
    EXPECT_EQ(WindowsUtil::CallLoadLibrary("no such library"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    SetLastError(0);
    EXPECT_EQ(WindowsUtil::CallSetWindowText(nullptr, "text"), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
}

}  // namespace
}  // namespace velm
