#include "velm/platform/CommandLine.h"

#include <windows.h>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <cstdio>
#include <memory>

namespace velm::platform {
namespace {

std::string Utf8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0) {
        return {};
    }
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8.data(), size, nullptr, nullptr);
    utf8.pop_back();  // the NUL
    return utf8;
}

struct HandleCloser {
    void operator()(HANDLE handle) const { CloseHandle(handle); }
};

bool EnableEscapes(HANDLE console) {
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) &&
           SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) &&
           GetConsoleMode(console, &mode) && (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

/// Whether the console interprets escape sequences. Some consoles accept the mode but still show the
/// sequences as text, so this tries one on a hidden screen buffer: interpreted, it does not move the cursor.
bool ConsoleInterpretsEscapes() {
    const HANDLE screen =
        CreateConsoleScreenBuffer(GENERIC_READ | GENERIC_WRITE, 0, nullptr, CONSOLE_TEXTMODE_BUFFER, nullptr);
    if (screen == INVALID_HANDLE_VALUE) {
        return false;
    }
    const std::unique_ptr<void, HandleCloser> closer(screen);
    constexpr wchar_t kReset[] = L"\x1b[0m";
    DWORD written = 0;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    return EnableEscapes(screen) && WriteConsoleW(screen, kReset, 4, &written, nullptr) &&
           GetConsoleScreenBufferInfo(screen, &info) && info.dwCursorPosition.X == 0;
}

}  // namespace

std::vector<std::string> Utf8CommandLine(int argc, char** argv) {
    SetConsoleOutputCP(CP_UTF8);
    int count = 0;
    const std::unique_ptr<LPWSTR, decltype(&LocalFree)> wide(CommandLineToArgvW(GetCommandLineW(), &count),
                                                             &LocalFree);
    if (wide == nullptr) {
        return {argv, argv + argc};
    }
    std::vector<std::string> arguments;
    for (int i = 0; i < count; ++i) {
        arguments.push_back(Utf8(wide.get()[i]));
    }
    return arguments;
}

std::string NarrowFileName(const std::string& utf8) {
    const int units = MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), -1, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(units), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.c_str(), -1, wide.data(), units);
    const int size = WideCharToMultiByte(CP_ACP, 0, wide.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    BOOL lost = FALSE;
    WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.c_str(), -1, narrow.data(), size, nullptr, &lost);
    return lost ? std::string() : std::string(narrow.c_str());
}

void UseBinary(std::FILE* stream) {
    _setmode(_fileno(stream), _O_BINARY);
}

bool OutputIsTerminal() {
    return _isatty(_fileno(stdout)) != 0;
}

bool ErrorIsTerminal() {
    return _isatty(_fileno(stderr)) != 0;
}

bool OutputTakesColors() {
    return GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) == 0 && ConsoleInterpretsEscapes() &&
           EnableEscapes(GetStdHandle(STD_OUTPUT_HANDLE));
}

}  // namespace velm::platform
