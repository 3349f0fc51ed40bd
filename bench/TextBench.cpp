// UTF-8 to UTF-16 and back, against the bare Windows calls: one to measure, one to convert.
#include <windows.h>

#include <memory>
#include <string>

#include "Families.h"
#include "velm/WindowsUtil.h"

namespace velm::bench {
namespace {

/// Text with characters of one, two and three bytes.
std::string MakeText(std::size_t size) {
    const std::string word = "The quick brown fox \xC3\xA4\xC3\xB6\xC3\xBC \xE6\x97\xA5\xE6\x9C\xAC jumps. ";
    std::string text;
    while (text.size() + word.size() <= size) {
        text += word;
    }
    return text.append(size - text.size(), '.');
}

/// Converts into existing buffers.
Contender BareCalls(const std::string& text) {
    const int size = static_cast<int>(text.size());
    const auto wide = std::make_shared<std::wstring>(text.size() + 1, L'\0');
    const auto narrow = std::make_shared<std::string>(3 * text.size() + 1, '\0');
    return Repeat("MultiByteToWideChar and WideCharToMultiByte", [=] {
        int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
        units = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide->data(), units);
        const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide->data(), units, nullptr, 0, nullptr, nullptr);
        WideCharToMultiByte(CP_UTF8, 0, wide->data(), units, narrow->data(), bytes, nullptr, nullptr);
        Keep(narrow->data());
    });
}

/// Converts into new buffers each time, as it must if a failed conversion is to leave the result unchanged.
Contender BareCallsAndMemory(const std::string& text) {
    const int size = static_cast<int>(text.size());
    return Repeat("the same calls into new buffers", [=] {
        const int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0);
        const std::unique_ptr<wchar_t[]> wide(new wchar_t[static_cast<std::size_t>(units)]);
        MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.get(), units);
        const int bytes = WideCharToMultiByte(CP_UTF8, 0, wide.get(), units, nullptr, 0, nullptr, nullptr);
        const std::unique_ptr<char[]> narrow(new char[static_cast<std::size_t>(bytes)]);
        WideCharToMultiByte(CP_UTF8, 0, wide.get(), units, narrow.get(), bytes, nullptr, nullptr);
        Keep(narrow.get());
    });
}

}  // namespace

void MeasureText(Suite& suite) {
    const struct {
        const char* name;
        std::size_t size;
        double share;
    } rows[] = {{"100 bytes", 100, 0.85}, {"1 MB", suite.IsShort() ? 10'000U : 1'000'000U, 0.95}};
    for (const auto& row : rows) {
        const std::string text = MakeText(row.size);
        std::wstring wide;
        std::string narrow;
        const Contender ours = Repeat("WindowsUtil", [&] {
            WindowsUtil::GetWstringFromUtf8String(text, wide);
            WindowsUtil::GetUtf8StringFromWstring(wide, narrow);
            Keep(narrow.data());
        });
        suite.Compare("Text", "UTF-8 to UTF-16 and back, " + std::string(row.name), ours,
                      {{BareCalls(text)}, LimitOf(BareCallsAndMemory(text), row.share)});
    }
}

}  // namespace velm::bench
