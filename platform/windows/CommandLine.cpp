#include "velm/platform/CommandLine.h"

#include <windows.h>
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

bool OutputIsTerminal() {
    return _isatty(_fileno(stdout)) != 0;
}

bool OutputTakesColors() {
    const HANDLE console = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    return GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) == 0 && GetConsoleMode(console, &mode) &&
           SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace velm::platform
