#include <windows.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "Intercept.h"

// The rules are those that Wine shows: a line ends at CR or LF; blanks around lines, names and values do not
// count; names are compared without regard to the case of ASCII letters; the first section of a name and the
// first line of a key are the ones; there are no comments, only keys that nobody asks for; what follows a NUL
// is dropped.

using namespace velm::posix;

namespace {

bool IsBlank(wchar_t unit) {
    return unit == L' ' || (unit >= L'\t' && unit <= L'\r') || unit == 0x1A;  // 0x1A ends a file of DOS
}

std::wstring_view TrimStart(std::wstring_view text) {
    return text.substr(
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsBlank) - text.begin()));
}

std::wstring_view Trim(std::wstring_view text) {
    text = TrimStart(text);
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::wstring_view CutAtNul(std::wstring_view text) {
    return text.substr(0, text.find(L'\0'));
}

wchar_t Fold(wchar_t unit) {
    return unit >= L'A' && unit <= L'Z' ? unit - L'A' + L'a' : unit;
}

bool EqualNames(std::wstring_view left, std::wstring_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](wchar_t a, wchar_t b) { return Fold(a) == Fold(b); });
}

/// The bytes of a file; none when it cannot be read.
std::optional<std::string> ReadWholeFile(LPCWSTR path) {
    constexpr DWORD kChunk = 1 << 16;
    const HANDLE handle = CreateFileW(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    const std::unique_ptr<void, decltype(&CloseHandle)> file(handle, &CloseHandle);
    std::string bytes;
    DWORD readSize = 0;
    do {
        const std::size_t size = bytes.size();
        bytes.resize(size + kChunk);
        if (!ReadFile(file.get(), bytes.data() + size, kChunk, &readSize, nullptr)) {
            return std::nullopt;
        }
        bytes.resize(size + readSize);
    } while (readSize != 0);
    SetLastError(ERROR_SUCCESS);
    return bytes;
}

std::wstring FromCodePage(UINT codePage, std::string_view bytes) {
    std::wstring text;
    if (!bytes.empty() && bytes.size() <= INT_MAX) {
        const int size = static_cast<int>(bytes.size());
        const int units = MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0);
        text.resize(static_cast<std::size_t>(units));
        MultiByteToWideChar(codePage, 0, bytes.data(), size, text.data(), units);
    }
    return text;
}

/// @param low  which byte of a unit is the low one
std::wstring FromUtf16(std::string_view bytes, std::size_t low) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    std::wstring text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text.push_back(static_cast<wchar_t>(byte(i + low) | byte(i + 1 - low) << 8));
    }
    return text;
}

/// The text of a file: in the encoding that its mark says, or in the ANSI code page.
std::wstring Decode(std::string_view bytes) {
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        return FromCodePage(CP_UTF8, bytes.substr(3));
    }
    if (bytes.starts_with("\xFF\xFE")) {
        return FromUtf16(bytes.substr(2), 0);
    }
    if (bytes.starts_with("\xFE\xFF")) {
        return FromUtf16(bytes.substr(2), 1);
    }
    return FromCodePage(CP_ACP, bytes);
}

/// Takes a line off the text, without what ends it.
std::wstring_view TakeLine(std::wstring_view& text) {
    const std::size_t end = text.find_first_of(L"\r\n");
    const std::wstring_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return line;
}

/// The name in a line "[name]"; none for other lines.
std::optional<std::wstring_view> SectionIn(std::wstring_view line) {
    const std::size_t end = line.rfind(L']');
    if (!line.starts_with(L'[') || end == line.npos) {
        return std::nullopt;
    }
    return CutAtNul(Trim(line.substr(1, end - 1)));
}

/// The value of a key as the text has it. What stands before the first section belongs to one without a name.
std::optional<std::wstring_view> Find(std::wstring_view text, std::wstring_view section,
                                      std::wstring_view key) {
    bool inSection = section.empty();
    while (!text.empty()) {
        const std::wstring_view line = Trim(TakeLine(text));
        if (const auto name = SectionIn(line)) {
            if (inSection) {
                return std::nullopt;
            }
            inSection = EqualNames(*name, section);
            continue;
        }
        const std::size_t equals = line.find(L'=');
        if (!inSection || line.empty() || !EqualNames(CutAtNul(Trim(line.substr(0, equals))), key)) {
            continue;
        }
        if (equals == line.npos) {
            return std::nullopt;
        }
        return CutAtNul(TrimStart(line.substr(equals + 1)));
    }
    return std::nullopt;
}

std::wstring_view WithoutQuotes(std::wstring_view text) {
    const bool quoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == L'"' || text.front() == L'\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

/// The value of a key in a file; none when the file or the key is missing.
std::optional<std::wstring> ReadValue(LPCWSTR section, LPCWSTR key, LPCWSTR path) {
    const auto bytes = path != nullptr ? ReadWholeFile(path) : std::nullopt;
    if (!bytes) {
        return std::nullopt;
    }
    const std::wstring text = Decode(*bytes);
    const auto value = Find(text, Trim(section), Trim(key));
    return value ? std::optional<std::wstring>(WithoutQuotes(*value)) : std::nullopt;
}

unsigned int DigitOf(wchar_t unit) {
    const wchar_t folded = Fold(unit);
    if (folded >= L'0' && folded <= L'9') {
        return static_cast<unsigned int>(folded - L'0');
    }
    return folded >= L'a' && folded <= L'f' ? static_cast<unsigned int>(folded - L'a') + 10 : UINT_MAX;
}

/// The number that a text begins with, modulo 2^32: blanks, a sign, a prefix 0x, 0o or 0b, digits.
UINT ToNumber(std::wstring_view text) {
    while (!text.empty() && text.front() <= L' ') {
        text.remove_prefix(1);
    }
    const bool negative = text.starts_with(L'-');
    if (negative || text.starts_with(L'+')) {
        text.remove_prefix(1);
    }
    UINT base = 10;
    if (text.starts_with(L"0x") || text.starts_with(L"0o") || text.starts_with(L"0b")) {
        base = text[1] == L'x' ? 16 : text[1] == L'o' ? 8 : 2;
        text.remove_prefix(2);
    }
    UINT number = 0;
    for (const wchar_t unit : text) {
        const unsigned int digit = DigitOf(unit);
        if (digit >= base) {
            break;
        }
        number = number * base + digit;
    }
    return negative ? 0 - number : number;
}

}  // namespace

UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR path) {
    constexpr std::size_t kMostUnits = 29;
    if (MustFail("GetPrivateProfileIntW")) {
        return static_cast<UINT>(defaultValue);
    }
    if (section == nullptr || key == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return static_cast<UINT>(defaultValue);
    }
    return WithinSystem(static_cast<UINT>(defaultValue), [&]() -> UINT {
        const auto value = ReadValue(section, key, path);
        if (!value || value->empty()) {
            return static_cast<UINT>(defaultValue);
        }
        return ToNumber(std::wstring_view(*value).substr(0, kMostUnits));
    });
}

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultText, LPWSTR buffer, DWORD units,
                               LPCWSTR path) {
    if (MustFail("GetPrivateProfileStringW") || buffer == nullptr || units == 0) {
        return 0;
    }
    buffer[0] = L'\0';
    if (section == nullptr || key == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return WithinSystem(DWORD{0}, [&]() -> DWORD {
        auto value = ReadValue(section, key, path);
        if (!value) {
            std::wstring_view text = defaultText != nullptr ? defaultText : L"";
            while (text.size() > 1 && text.back() == L' ') {
                text.remove_suffix(1);
            }
            value = WithoutQuotes(text);
        }
        const std::size_t length = std::min<std::size_t>(value->size(), units - 1);
        std::copy_n(value->begin(), length, buffer);
        buffer[length] = L'\0';
        return static_cast<DWORD>(length);
    });
}
