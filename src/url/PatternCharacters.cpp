#include "url/PatternCharacters.h"

#include <string>
#include <utility>

namespace velm {
namespace {

constexpr std::size_t kClassWork = 256;              // a question for every character
constexpr std::size_t kEquivalenceClassWork = 2048;  // comparing a string for every character

constexpr std::pair<char, char> kControlEscapes[] = {
    {'0', '\0'}, {'f', '\f'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'v', '\v'},
};

unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

}  // namespace

std::optional<PatternCharacters::Set> PatternCharacters::ReadBracket() {
    const bool negated = m_rest.starts_with('^');
    m_rest.remove_prefix(negated ? 1 : 0);
    Set set;
    enum { kNothing, kCharacter, kClass } previous = kNothing;  // what a dash would follow
    char first = 0;                                             // of a range, when it follows a character
    Symbol symbol = ReadSymbol();
    if (symbol.kind == Kind::kDash) {
        symbol = {Kind::kCharacter, '-', {}};
    }
    while (symbol.kind != Kind::kEnd) {
        if (symbol.kind == Kind::kBad) {
            return std::nullopt;
        }
        if (symbol.kind != Kind::kDash) {
            set |= symbol.set;
            if (symbol.kind == Kind::kCharacter) {
                set.set(Byte(symbol.character));
            }
            previous = symbol.kind == Kind::kCharacter ? kCharacter : kClass;
            first = symbol.character;
            symbol = ReadSymbol();
            continue;
        }
        symbol = ReadSymbol();
        if (symbol.kind == Kind::kEnd || previous == kNothing) {  // a dash that stands for itself
            set.set(Byte('-'));
            previous = kCharacter;
            first = '-';
            continue;
        }
        const char last = symbol.kind == Kind::kDash ? '-' : symbol.character;
        const bool isRange = previous == kCharacter && first <= last &&
                             (symbol.kind == Kind::kDash || symbol.kind == Kind::kCharacter);
        if (!isRange) {
            return std::nullopt;
        }
        for (int c = first; c <= last; ++c) {
            set.set(Byte(static_cast<char>(c)));
        }
        previous = kNothing;
        symbol = ReadSymbol();
    }
    return negated ? ~set : set;
}

std::optional<char> PatternCharacters::ReadEscape(char letter) {
    for (const auto& [escape, character] : kControlEscapes) {
        if (letter == escape) {
            return character;
        }
    }
    if (letter == 'c') {  // the character itself follows
        if (m_rest.empty()) {
            return std::nullopt;
        }
        const char character = m_rest.front();
        m_rest.remove_prefix(1);
        return character;
    }
    if (letter != 'x' && letter != 'u') {
        return letter;
    }
    unsigned int code = 0;
    for (int digits = letter == 'x' ? 2 : 4; digits > 0; --digits) {
        const int value = m_rest.empty() ? -1 : HexDigit(m_rest.front());
        if (value < 0) {
            return std::nullopt;
        }
        m_rest.remove_prefix(1);
        code = code * 16 + static_cast<unsigned int>(value);
    }
    return static_cast<char>(code);  // text is bytes: of a larger code the low one
}

std::optional<PatternCharacters::Set> PatternCharacters::FindClass(std::string_view name) {
    m_work += kClassWork;
    const auto mask = m_traits.lookup_classname(name.begin(), name.end());
    if (mask == std::regex_traits<char>::char_class_type()) {
        return std::nullopt;
    }
    Set set;
    for (std::size_t c = 0; c < set.size(); ++c) {
        set[c] = m_traits.isctype(static_cast<char>(c), mask);
    }
    return set;
}

std::optional<PatternCharacters::Set> PatternCharacters::FindEquivalenceClass(std::string_view name) {
    m_work += kEquivalenceClassWork;
    const std::string element = m_traits.lookup_collatename(name.begin(), name.end());
    if (element.empty()) {
        return std::nullopt;
    }
    Set set;
    if (m_collationKeys.empty()) {  // made once: the locale takes its time
        for (std::size_t i = 0; i < set.size(); ++i) {
            const char c = static_cast<char>(i);
            m_collationKeys.push_back(m_traits.transform_primary(&c, &c + 1));
        }
    }
    const std::string key = m_traits.transform_primary(element.begin(), element.end());
    for (std::size_t i = 0; i < set.size(); ++i) {
        set[i] = m_collationKeys[i] == key;
    }
    return set;
}

PatternCharacters::Symbol PatternCharacters::ReadSymbol() {
    if (m_rest.empty()) {
        return {};
    }
    const char c = m_rest.front();
    m_rest.remove_prefix(1);
    switch (c) {
        case ']':
            return {Kind::kEnd, 0, {}};
        case '-':
            return {Kind::kDash, 0, {}};
        case '[':
            return ReadNamedSymbol();
        case '\\':
            return ReadEscapedSymbol();
        default:
            return {Kind::kCharacter, c, {}};
    }
}

/// "[:class:]", "[.element.]" or "[=element=]", from behind its first bracket; or that bracket itself.
PatternCharacters::Symbol PatternCharacters::ReadNamedSymbol() {
    if (m_rest.empty()) {
        return {};
    }
    const char mark = m_rest.front();
    if (mark != ':' && mark != '.' && mark != '=') {
        return {Kind::kCharacter, '[', {}};
    }
    const std::size_t end = m_rest.find(mark, 1);
    if (end == m_rest.npos || m_rest.substr(end + 1).empty() || m_rest[end + 1] != ']') {
        return {};
    }
    const std::string_view name = m_rest.substr(1, end - 1);
    m_rest.remove_prefix(end + 2);
    if (mark == '.') {
        const std::string element = m_traits.lookup_collatename(name.begin(), name.end());
        return element.size() == 1 ? Symbol{Kind::kCharacter, element[0], {}} : Symbol{};
    }
    const auto set = mark == ':' ? FindClass(name) : FindEquivalenceClass(name);
    return set ? Symbol{Kind::kSet, 0, *set} : Symbol{};
}

PatternCharacters::Symbol PatternCharacters::ReadEscapedSymbol() {
    if (m_rest.empty()) {
        return {};
    }
    const char letter = m_rest.front();
    m_rest.remove_prefix(1);
    switch (letter) {
        case 'b':
            return {Kind::kCharacter, '\b', {}};
        case 'd':
        case 's':
        case 'w':
            return {Kind::kSet, 0, *FindClass(std::string_view(&letter, 1))};
        case 'D':
        case 'S':
        case 'W':
            return {Kind::kSet, 0, ~*FindClass(std::string_view(&letter, 1))};
        default:
            break;
    }
    if (letter == 'B' || (letter >= '1' && letter <= '9')) {  // neither stands for a character
        return {};
    }
    const auto character = ReadEscape(letter);
    return character ? Symbol{Kind::kCharacter, *character, {}} : Symbol{};
}

}  // namespace velm
