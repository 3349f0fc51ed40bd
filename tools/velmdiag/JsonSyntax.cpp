#include "JsonSyntax.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "Text.h"

namespace velmdiag {
namespace {

constexpr std::size_t kMaxLevels = 100;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

class JsonChecker {
public:
    JsonChecker(std::string_view text, const std::function<void(std::string_view)>& onToken)
        : m_text(text),
          m_onToken(onToken),
          m_at(text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0) {}

    void Run() {
        if (m_text.starts_with("\xFF\xFE") || m_text.starts_with("\xFE\xFF")) {
            Fail(0, "the document is in UTF-16, but JSON is UTF-8");
        }
        for (;;) {
            m_at = std::min(m_text.find_first_not_of(" \t\r\n", m_at), m_text.size());
            if (m_at == m_text.size()) {
                break;
            }
            Step();
        }
        if (!m_open.empty()) {
            Fail(m_at, std::string("the document ends, but the ") + m_text[m_open.back()] + " at " +
                           PlaceOf(m_open.back()) + " is not closed");
        }
        if (m_expected != Expected::kNothing) {
            Fail(m_at, "the document is empty");
        }
    }

private:
    enum class Expected { kValue, kElementOrEnd, kNameOrEnd, kName, kColon, kCommaOrEnd, kNothing };

    bool InObject() const { return m_text[m_open.back()] == '{'; }

    void Step() {
        const char next = m_text[m_at];
        switch (m_expected) {
            case Expected::kNothing:
                Fail(m_at, "expected the end of the document, not " + Found(m_at));
            case Expected::kColon:
                Require(next == ':', "a colon");
                Take(m_at + 1, Expected::kValue);
                break;
            case Expected::kCommaOrEnd:
                if (next == (InObject() ? '}' : ']')) {
                    return Close();
                }
                Require(next == ',', InObject() ? "a comma or }" : "a comma or ]");
                Take(m_at + 1, InObject() ? Expected::kName : Expected::kValue);
                break;
            case Expected::kNameOrEnd:
            case Expected::kName:
                if (next == '}' && m_expected == Expected::kNameOrEnd) {
                    return Close();
                }
                Require(next == '"',
                        m_expected == Expected::kName ? "a name in quotes" : "a name in quotes or }");
                Take(EndOfString(), Expected::kColon);
                break;
            case Expected::kElementOrEnd:
                if (next == ']') {
                    return Close();
                }
                [[fallthrough]];
            case Expected::kValue:
                Value(next);
        }
    }

    void Value(char first) {
        if (first == '{' || first == '[') {
            return Open(first);
        }
        if (first == '"') {
            return Take(EndOfString(), AfterValue());
        }
        if (first == '-' || IsDigit(first)) {
            return Take(EndOfNumber(), AfterValue());
        }
        for (const std::string_view literal : {"true", "false", "null"}) {
            if (m_text.substr(m_at, literal.size()) == literal) {
                return Take(m_at + literal.size(), AfterValue());
            }
        }
        Require(false, m_expected == Expected::kElementOrEnd ? "a value or ]" : "a value");
    }

    void Open(char bracket) {
        if (m_open.size() == kMaxLevels) {
            Fail(m_at,
                 "nested deeper than " + std::to_string(kMaxLevels) + " levels, which the library refuses");
        }
        m_open.push_back(m_at);
        Take(m_at + 1, bracket == '{' ? Expected::kNameOrEnd : Expected::kElementOrEnd);
    }

    void Close() {
        m_open.pop_back();
        Take(m_at + 1, AfterValue());
    }

    Expected AfterValue() const { return m_open.empty() ? Expected::kNothing : Expected::kCommaOrEnd; }

    void Take(std::size_t end, Expected expected) {
        if (m_onToken) {
            m_onToken(m_text.substr(m_at, end - m_at));
        }
        m_at = end;
        m_expected = expected;
    }

    std::size_t EndOfNumber() const {
        const std::size_t first = m_at + (m_text[m_at] == '-' ? 1 : 0);
        std::size_t end = EndOfDigits(first);
        if (m_text[first] == '0' && end != first + 1) {
            Fail(first, "a number has no leading zeros");
        }
        if (CharAt(end) == '.') {
            end = EndOfDigits(end + 1);
        }
        if (CharAt(end) == 'e' || CharAt(end) == 'E') {
            ++end;
            end = EndOfDigits(end + (CharAt(end) == '+' || CharAt(end) == '-' ? 1 : 0));
        }
        if (std::isinf(std::strtod(std::string(m_text.substr(m_at, end - m_at)).c_str(), nullptr))) {
            Fail(m_at, "the number is too large for a double, which the library refuses");
        }
        return end;
    }

    std::size_t EndOfDigits(std::size_t at) const {
        const std::size_t first = at;
        while (IsDigit(CharAt(at))) {
            ++at;
        }
        if (at == first) {
            Fail(at, "expected a digit, not " + Found(at));
        }
        return at;
    }

    std::size_t EndOfString() const {
        for (std::size_t at = m_at + 1; at < m_text.size();) {
            const char c = m_text[at];
            char32_t code = 0;
            if (c == '"') {
                return at + 1;
            }
            if (c == '\\') {
                at = EndOfEscape(at);
            } else if (static_cast<unsigned char>(c) < 0x20) {
                Fail(at, c == '\n' || c == '\r'
                             ? "a string must not contain a line end; write \\n"
                             : "a string must not contain a control character; use an escape");
            } else if (const std::size_t size = ReadUtf8(m_text.substr(at), code); size != 0) {
                at += size;
            } else {
                Fail(at, Found(at) + " is not UTF-8");
            }
        }
        Fail(m_at, "the string that starts here is not closed");
    }

    std::size_t EndOfEscape(std::size_t at) const {
        const char letter = CharAt(at + 1);
        if (letter == 'u') {
            return EndOfUnicodeEscape(at);
        }
        if (letter == '\0' || std::string_view("\"\\/bfnrt").find(letter) == std::string_view::npos) {
            Fail(at, "invalid escape: a backslash and " + Found(at + 1));
        }
        return at + 2;
    }

    std::size_t EndOfUnicodeEscape(std::size_t at) const {
        constexpr std::size_t kSize = 6;  // \uXXXX
        const unsigned long unit = UnitAt(at);
        const bool isHigh = unit >= 0xD800 && unit < 0xDC00;
        if (!isHigh && (unit < 0xDC00 || unit > 0xDFFF)) {
            return at + kSize;
        }
        const std::size_t second = at + kSize;
        if (isHigh && CharAt(second) == '\\' && CharAt(second + 1) == 'u') {
            if (const unsigned long low = UnitAt(second); low >= 0xDC00 && low <= 0xDFFF) {
                return second + kSize;
            }
        }
        Fail(at, "the escape is half of a surrogate pair");
    }

    /// The UTF-16 unit of an escape \uXXXX.
    unsigned long UnitAt(std::size_t at) const {
        const std::string digits(m_text.substr(std::min(at + 2, m_text.size()), 4));
        if (digits.size() != 4 || !std::ranges::all_of(digits, IsHexDigit)) {
            Fail(at, "\\u needs four hexadecimal digits");
        }
        return std::strtoul(digits.c_str(), nullptr, 16);
    }

    /// Returns NUL at the end.
    char CharAt(std::size_t at) const { return at < m_text.size() ? m_text[at] : '\0'; }

    std::string Found(std::size_t at) const {
        if (at >= m_text.size()) {
            return "the end of the document";
        }
        char32_t code = 0;
        const std::size_t size = ReadUtf8(m_text.substr(at), code);
        return size == 0 ? "the byte " + Printable(m_text.substr(at, 1))
                         : "'" + Printable(m_text.substr(at, size)) + "'";
    }

    std::string PlaceOf(std::size_t at) const {
        std::string_view before = m_text.substr(0, at);
        if (before.starts_with(kByteOrderMark)) {
            before.remove_prefix(kByteOrderMark.size());
        }
        const auto lines = std::ranges::count(before, '\n');
        before.remove_prefix(before.rfind('\n') + 1);  // npos + 1 is 0
        const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
        return "line " + std::to_string(lines + 1) + ", column " +
               std::to_string(std::ranges::count_if(before, isFirstByte) + 1);
    }

    void Require(bool holds, const char* expected) const {
        if (!holds) {
            Fail(m_at, std::string("expected ") + expected + ", not " + Found(m_at));
        }
    }

    [[noreturn]] void Fail(std::size_t at, const std::string& reason) const {
        throw JsonSyntaxError(PlaceOf(at) + ": " + reason);
    }

    std::string_view m_text;
    const std::function<void(std::string_view)>& m_onToken;
    std::size_t m_at;
    Expected m_expected = Expected::kValue;
    std::vector<std::size_t> m_open;  // where each array or object around m_at starts
};

/// Formats a sequence of tokens.
class JsonWriter {
public:
    explicit JsonWriter(bool escapeHidden) : m_escapeHidden(escapeHidden) {}

    void Take(std::string_view token) {
        const char first = token.front();
        const bool opens = first == '[' || first == '{';
        const bool closes = first == ']' || first == '}';
        m_depth -= closes ? 1 : 0;
        if (closes ? !m_afterOpening : m_afterOpening || m_afterComma) {
            m_text += '\n';
            m_text.append(2 * m_depth, ' ');
        }
        m_depth += opens ? 1 : 0;
        m_afterOpening = opens;
        m_afterComma = first == ',';
        if (m_escapeHidden && first == '"') {
            Escape(token);
        } else {
            m_text += token;
        }
        m_text += first == ':' ? " " : "";
    }

    std::string Finish() { return std::move(m_text) + '\n'; }

private:
    void Escape(std::string_view string) {
        while (!string.empty()) {
            char32_t code = 0;
            const std::size_t size = ReadUtf8(string, code);
            if (IsVisible(code)) {
                m_text += string.substr(0, size);
            } else if (code < 0x10000) {
                EscapeUnit(code);
            } else {
                EscapeUnit(0xD800 + ((code - 0x10000) >> 10));
                EscapeUnit(0xDC00 + (code & 0x3FF));
            }
            string.remove_prefix(size);
        }
    }

    void EscapeUnit(char32_t unit) {
        m_text += "\\u";
        for (const int shift : {12, 8, 4, 0}) {
            m_text += "0123456789abcdef"[unit >> shift & 0xF];
        }
    }

    bool m_escapeHidden;
    bool m_afterOpening = false;
    bool m_afterComma = false;
    std::size_t m_depth = 0;
    std::string m_text;
};

}  // namespace

void CheckJson(std::string_view text, const std::function<void(std::string_view)>& onToken) {
    JsonChecker(text, onToken).Run();
}

std::string FormatJson(std::string_view text, bool escapeHidden) {
    JsonWriter writer(escapeHidden);
    CheckJson(text, [&writer](std::string_view token) { writer.Take(token); });
    return writer.Finish();
}

}  // namespace velmdiag
