#include "Text.h"

namespace velmdiag {
namespace {

/// Characters that are invisible or change where others appear.
struct HiddenRange {
    char32_t first;
    char32_t last;
};

constexpr HiddenRange kHidden[] = {
    {0x061C, 0x061C},    // Arabic letter mark
    {0x200B, 0x200F},    // zero width, left-to-right and right-to-left marks
    {0x2028, 0x202E},    // line and paragraph separators, embeddings and overrides
    {0x2060, 0x206F},    // word joiner, isolates, deprecated formatting
    {0xFEFF, 0xFEFF},    // byte-order mark
    {0xE0000, 0xE007F},  // tags
};

bool IsControl(char32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool IsHidden(char32_t code) {
    for (const HiddenRange& range : kHidden) {
        if (code >= range.first && code <= range.last) {
            return true;
        }
    }
    return false;
}

std::string HexDigits(char32_t value, std::size_t fewest) {
    std::string digits;
    for (; value != 0 || digits.size() < fewest; value >>= 4) {
        digits.insert(digits.begin(), "0123456789abcdef"[value & 0xF]);
    }
    return digits;
}

std::string EscapeControl(char32_t code) {
    switch (code) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return "\\x" + HexDigits(code, 2);
    }
}

bool IsContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::size_t ReadUtf8(std::string_view text, char32_t& code) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};  // by length; smaller values are overlong
    if (text.empty()) {
        return 0;
    }
    const auto lead = static_cast<unsigned char>(text.front());
    if (lead < 0x80) {
        code = lead;
        return 1;
    }
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC0 || lead > 0xF4 || text.size() < size) {
        return 0;
    }
    char32_t value = lead & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        if (!IsContinuation(text[i])) {
            return 0;
        }
        value = value << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    const bool isSurrogate = value >= 0xD800 && value <= 0xDFFF;
    if (value < kSmallest[size] || value > 0x10FFFF || isSurrogate) {
        return 0;
    }
    code = value;
    return size;
}

bool IsVisible(char32_t code) {
    return !IsControl(code) && !IsHidden(code);
}

std::string Printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        char32_t code = 0;
        const std::size_t size = ReadUtf8(text, code);
        if (size == 0) {
            shown += "\\x" + HexDigits(static_cast<unsigned char>(text.front()), 2);
        } else if (IsControl(code)) {
            shown += EscapeControl(code);
        } else if (IsHidden(code)) {
            shown += "\\u{" + HexDigits(code, 4) + '}';
        } else {
            shown += text.substr(0, size);
        }
        text.remove_prefix(size != 0 ? size : 1);
    }
    return shown;
}

std::string ValidUtf8(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        char32_t code = 0;
        const std::size_t size = ReadUtf8(text, code);
        valid += size != 0 ? text.substr(0, size) : "\xEF\xBF\xBD";
        text.remove_prefix(size != 0 ? size : 1);
    }
    return valid;
}

}  // namespace velmdiag
