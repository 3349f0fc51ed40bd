#include "graphics/AdapterRuleTokens.h"

#include <charconv>

namespace velm {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool IsAmong(std::string_view characters, char c) {
    return characters.find(c) != std::string_view::npos;
}

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool IsNumberCharacter(char c) {
    return (c >= '0' && c <= '9') || IsAmong("+-.eE", c);
}

void AppendUtf8(std::string& text, unsigned int codePoint) {
    const auto append = [&](unsigned int byte) { text.push_back(static_cast<char>(byte)); };
    if (codePoint < 0x80) {
        append(codePoint);
        return;
    }
    if (codePoint < 0x800) {
        append(0xC0 | codePoint >> 6);
    } else if (codePoint < 0x10000) {
        append(0xE0 | codePoint >> 12);
        append(0x80 | (codePoint >> 6 & 0x3F));
    } else {
        append(0xF0 | codePoint >> 18);
        append(0x80 | (codePoint >> 12 & 0x3F));
        append(0x80 | (codePoint >> 6 & 0x3F));
    }
    append(0x80 | (codePoint & 0x3F));
}

}  // namespace

AdapterRuleTokens::AdapterRuleTokens(std::string_view text, AdapterRuleError& error)
    : m_begin(text.data() + (text.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0)),
      m_at(m_begin),
      m_end(text.data() + text.size()),
      m_error(error) {}

bool AdapterRuleTokens::Next() {
    while (m_at != m_end && IsAmong(" \t\r\n", *m_at)) {
        ++m_at;
    }
    const char* const begin = m_at;
    if (m_at == m_end) {
        return Finish('\0', begin);
    }
    if (*m_at == '"') {
        return ReadString() && Finish('"', begin);
    }
    if (IsAmong("{}[]:,", *m_at)) {
        ++m_at;
        return Finish(*begin, begin);
    }
    const bool isNumber = IsNumberCharacter(*m_at) && !IsWordCharacter(*m_at);
    while (m_at != m_end && (isNumber ? IsNumberCharacter(*m_at) : IsWordCharacter(*m_at))) {
        ++m_at;
    }
    return m_at != begin ? Finish(isNumber ? '0' : 'a', begin) : Fail(begin, "unexpected character");
}

bool AdapterRuleTokens::Finish(char kind, const char* begin) {
    m_current.kind = kind;
    m_current.raw = {begin, static_cast<std::size_t>(m_at - begin)};
    return true;
}

bool AdapterRuleTokens::ReadString() {
    const char* const begin = m_at++;
    m_current.text.clear();
    while (m_at != m_end && *m_at != '"') {
        if (static_cast<unsigned char>(*m_at) < ' ') {
            return Fail(m_at, "line end or control character in a string");
        }
        if (*m_at != '\\') {
            m_current.text.push_back(*m_at++);
        } else if (!ReadEscape()) {
            return false;
        }
    }
    if (m_at == m_end) {
        return Fail(begin, "string without an end");
    }
    ++m_at;
    return true;
}

bool AdapterRuleTokens::ReadEscape() {
    constexpr std::string_view kNames = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    const char* const begin = m_at++;
    if (m_at != m_end && *m_at == 'u') {
        ++m_at;
        return ReadCodePoint() || Fail(begin, "invalid \\u");
    }
    const std::size_t index = m_at == m_end ? std::string_view::npos : kNames.find(*m_at);
    if (index == std::string_view::npos) {
        return Fail(begin, "unknown escape");
    }
    m_current.text.push_back(kMeanings[index]);
    ++m_at;
    return true;
}

bool AdapterRuleTokens::ReadCodePoint() {
    unsigned int unit = 0;
    if (!ReadHex(&unit) || (unit >= 0xDC00 && unit < 0xE000)) {
        return false;
    }
    if (unit >= 0xD800 && unit < 0xDC00) {
        unsigned int low = 0;
        if (m_end - m_at < 2 || m_at[0] != '\\' || m_at[1] != 'u') {
            return false;
        }
        m_at += 2;
        if (!ReadHex(&low) || low < 0xDC00 || low >= 0xE000) {
            return false;
        }
        unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
    AppendUtf8(m_current.text, unit);
    return true;
}

bool AdapterRuleTokens::ReadHex(unsigned int* unit) {
    constexpr std::ptrdiff_t kDigits = 4;
    if (m_end - m_at < kDigits || std::from_chars(m_at, m_at + kDigits, *unit, 16).ptr != m_at + kDigits) {
        return false;
    }
    m_at += kDigits;
    return true;
}

bool AdapterRuleTokens::Fail(const char* at, const std::string& message) {
    m_error = {1, 1, message};
    for (const char* c = m_begin; c != at; ++c) {
        if (*c == '\n') {
            ++m_error.line;
            m_error.column = 1;
        } else if ((static_cast<unsigned char>(*c) & 0xC0) != 0x80) {  // not a continuation byte
            ++m_error.column;
        }
    }
    return false;
}

}  // namespace velm
