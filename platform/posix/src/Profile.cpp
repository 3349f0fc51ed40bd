#include <windows.h>
#include <strings.h>

#include <algorithm>
#include <cwchar>
#include <fstream>
#include <optional>
#include <sstream>

#include "Intercept.h"
#include "Text.h"

// INI rules, as on Windows: a line ends at CR or LF; blanks around lines, names and values are ignored; names
// are case-insensitive; the first section of a name and the first line of a key win; there are no
// comments: a line with one is a key that nobody reads.

using namespace velm::posix;

namespace {

std::wstring_view Trim(std::wstring_view text) {
    constexpr std::wstring_view kBlanks = L" \t\v\f\x1A";  // 0x1A is the DOS end-of-file character
    text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
    return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

bool EqualNames(std::wstring_view left, std::wstring_view right) {
    return left.size() == right.size() && wcsncasecmp(left.data(), right.data(), left.size()) == 0;
}

/// Reads a file in the encoding given by its byte-order mark, or in the ANSI code page without one; "" when
/// it cannot be read.
std::wstring ReadText(LPCWSTR path) {
    std::ostringstream content;
    content << std::ifstream(NativePath(path), std::ios::binary).rdbuf();
    const std::string bytes = std::move(content).str();
    constexpr struct {
        std::string_view mark;
        const char* encoding;
    } kMarks[] = {{"\xEF\xBB\xBF", "UTF-8"}, {"\xFF\xFE", "UTF-16LE"}, {"\xFE\xFF", "UTF-16BE"}};
    for (const auto& [mark, encoding] : kMarks) {
        if (bytes.starts_with(mark)) {
            return Wide(std::string_view(bytes).substr(mark.size()), encoding);
        }
    }
    return Wide(bytes, "CP1252");
}

/// Removes the first line from the text and returns it.
std::wstring_view TakeLine(std::wstring_view& text) {
    const std::size_t end = text.find_first_of(L"\r\n");
    const std::wstring_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
    return Trim(line);
}

/// Returns the name in a line "[name]"; none for other lines.
std::optional<std::wstring_view> SectionIn(std::wstring_view line) {
    const std::size_t end = line.rfind(L']');
    if (!line.starts_with(L'[') || end == line.npos) {
        return std::nullopt;
    }
    return Trim(line.substr(1, end - 1));
}

/// Finds the value of a key, unprocessed. Lines before the first section belong to the section "".
std::optional<std::wstring_view> Find(std::wstring_view text, std::wstring_view section,
                                      std::wstring_view key) {
    bool inSection = section.empty();
    while (!text.empty()) {
        const std::wstring_view line = TakeLine(text);
        if (const auto name = SectionIn(line)) {
            if (inSection) {
                return std::nullopt;
            }
            inSection = EqualNames(*name, section);
            continue;
        }
        const std::size_t equals = line.find(L'=');
        if (inSection && !line.empty() && EqualNames(Trim(line.substr(0, equals)), key)) {
            return equals == line.npos ? std::nullopt : std::optional(Trim(line.substr(equals + 1)));
        }
    }
    return std::nullopt;
}

/// Lists the sections of a text, or the keys of one section, each followed by a NUL.
std::wstring ListNames(std::wstring_view text, LPCWSTR section) {
    std::wstring names;
    bool inSection = false;
    while (!text.empty()) {
        const std::wstring_view line = TakeLine(text);
        std::wstring_view name;
        if (const auto found = SectionIn(line)) {
            if (section != nullptr && inSection) {
                break;
            }
            inSection = section != nullptr && EqualNames(*found, Trim(section));
            name = section == nullptr ? *found : name;
        } else if (inSection && !line.starts_with(L';')) {
            name = Trim(line.substr(0, line.find(L'=')));
        }
        if (!name.empty()) {
            names.append(name).push_back(L'\0');
        }
    }
    return names;
}

/// Copies a list of names as Windows does: NUL-terminated, twice where it is truncated.
DWORD CopyNames(const std::wstring& names, LPWSTR buffer, DWORD units) {
    const auto count = static_cast<DWORD>(std::min<std::size_t>(names.size(), units - 1));
    std::copy_n(names.begin(), count, buffer);
    buffer[count] = L'\0';
    if (count == names.size() || units < 2) {
        return count;
    }
    buffer[units - 2] = L'\0';
    return units - 2;
}

std::wstring_view WithoutQuotes(std::wstring_view text) {
    const bool quoted =
        text.size() >= 2 && text.front() == text.back() && (text.front() == L'"' || text.front() == L'\'');
    return quoted ? text.substr(1, text.size() - 2) : text;
}

/// Reads the value of a key from a file; the default when the file or the key is missing.
std::wstring ReadValue(LPCWSTR section, LPCWSTR key, std::wstring_view defaultText, LPCWSTR path) {
    const std::wstring text = ReadText(path);
    const auto value = Find(text, Trim(section), Trim(key));
    return std::wstring(
        WithoutQuotes(value ? *value : defaultText.substr(0, defaultText.find_last_not_of(L' ') + 1)));
}

/// Parses the number at the start of a text, modulo 2^32: blanks, a sign, a prefix 0x, digits.
UINT ToNumber(const std::wstring& text) {
    const std::size_t digits = std::min(text.find_first_not_of(L" \t+-"), text.size());
    return static_cast<UINT>(
        std::wcstoul(text.c_str(), nullptr, text.compare(digits, 2, L"0x") == 0 ? 16 : 10));
}

}  // namespace

UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR path) {
    const auto defaultNumber = static_cast<UINT>(defaultValue);
    if (MustFail("GetPrivateProfileIntW")) {
        return defaultNumber;
    }
    if (section == nullptr || key == nullptr || path == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return defaultNumber;
    }
    return WithinSystem(defaultNumber, [&] {
        const std::wstring value = ReadValue(section, key, L"", path);
        return value.empty() ? defaultNumber : ToNumber(value);
    });
}

DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultText, LPWSTR buffer, DWORD units,
                               LPCWSTR path) {
    if (MustFail("GetPrivateProfileStringW") || buffer == nullptr || units == 0) {
        return 0;
    }
    buffer[0] = L'\0';
    if (path == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    return WithinSystem(DWORD{0}, [&] {
        if (section == nullptr || key == nullptr) {
            return CopyNames(ListNames(ReadText(path), section), buffer, units);
        }
        return CopyText(ReadValue(section, key, defaultText != nullptr ? defaultText : L"", path), buffer,
                        units);
    });
}
