#include "url/PatternCharacters.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace velm {
namespace {

constexpr std::size_t kClassWork = 256;  // a question for every character

constexpr std::pair<char, char> kControlEscapes[] = {
    {'0', '\0'}, {'f', '\f'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}, {'v', '\v'},
};

constexpr bool IsDigit(int c) {
    return c >= '0' && c <= '9';
}
constexpr bool IsLower(int c) {
    return c >= 'a' && c <= 'z';
}
constexpr bool IsUpper(int c) {
    return c >= 'A' && c <= 'Z';
}
constexpr bool IsAlnum(int c) {
    return IsDigit(c) || IsLower(c) || IsUpper(c);
}
constexpr bool IsGraph(int c) {
    return c > ' ' && c < 0x7F;
}
constexpr int ToLower(int c) {
    return IsUpper(c) ? c - 'A' + 'a' : c;
}

constexpr struct {
    std::string_view name;
    bool (*contains)(int c);
} kClasses[] = {
    {"alnum", IsAlnum},
    {"alpha", [](int c) { return IsLower(c) || IsUpper(c); }},
    {"blank", [](int c) { return c == ' ' || c == '\t'; }},
    {"cntrl", [](int c) { return c < ' ' || c == 0x7F; }},
    {"d", IsDigit},
    {"digit", IsDigit},
    {"graph", IsGraph},
    {"lower", IsLower},
    {"print", [](int c) { return c == ' ' || IsGraph(c); }},
    {"punct", [](int c) { return IsGraph(c) && !IsAlnum(c); }},
    {"s", [](int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }},
    {"space", [](int c) { return c == ' ' || (c >= '\t' && c <= '\r'); }},
    {"upper", IsUpper},
    {"w", [](int c) { return IsAlnum(c) || c == '_'; }},
    {"xdigit", [](int c) { return IsDigit(c) || (ToLower(c) >= 'a' && ToLower(c) <= 'f'); }},
};

/// The names that POSIX gives to the characters that are not letters; a letter's name is the letter.
constexpr struct {
    char first;
    std::string_view names;
} kElements[] = {
    {0,
     "NUL SOH STX ETX EOT ENQ ACK alert backspace tab newline vertical-tab form-feed carriage-return SO SI "
     "DLE DC1 DC2 DC3 DC4 NAK SYN ETB CAN EM SUB ESC IS4 IS3 IS2 IS1 "
     "space exclamation-mark quotation-mark number-sign dollar-sign percent-sign ampersand apostrophe "
     "left-parenthesis right-parenthesis asterisk plus-sign comma hyphen period slash "
     "zero one two three four five six seven eight nine "
     "colon semicolon less-than-sign equals-sign greater-than-sign question-mark commercial-at"},
    {'[', "left-square-bracket backslash right-square-bracket circumflex underscore grave-accent"},
    {'{', "left-curly-bracket vertical-line right-curly-bracket tilde DEL"},
};

/// The character of a name; empty when it names none.
std::optional<char> FindElement(std::string_view name) {
    if (name.size() == 1 && (IsLower(name[0]) || IsUpper(name[0]))) {
        return name[0];
    }
    for (const auto& [first, names] : kElements) {
        char character = first;
        for (std::string_view left = names; !left.empty(); ++character) {
            const std::string_view next = left.substr(0, left.find(' '));
            if (next == name) {
                return character;
            }
            left.remove_prefix(std::min(next.size() + 1, left.size()));
        }
    }
    return std::nullopt;
}

unsigned char PatternByte(char c) {
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
            const bool isCharacter = symbol.kind == Kind::kCharacter || symbol.kind == Kind::kElement;
            set |= symbol.set;
            if (isCharacter) {
                set.set(PatternByte(symbol.character));
            }
            previous = isCharacter ? kCharacter : kClass;
            first = symbol.character;
            symbol = ReadSymbol();
            continue;
        }
        symbol = ReadSymbol();
        if (symbol.kind == Kind::kEnd || previous == kNothing) {  // a dash that stands for itself
            set.set(PatternByte('-'));
            previous = kCharacter;
            first = '-';
            continue;
        }
        // Like the standard library: a named element may begin a range and not end one.
        const char last = symbol.kind == Kind::kDash ? '-' : symbol.character;
        const bool isRange = previous == kCharacter && first <= last &&
                             (symbol.kind == Kind::kDash || symbol.kind == Kind::kCharacter);
        if (!isRange) {
            return std::nullopt;
        }
        // NOLINTNEXTLINE(bugprone-signed-char-misuse): a range runs in the order of char
        for (int c = first; c <= last; ++c) {
            set.set(PatternByte(static_cast<char>(c)));
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
    const auto isNamed = [name](const auto& entry) {
        return std::ranges::equal(entry.name, name, {}, {},
                                  [](char c) { return static_cast<char>(ToLower(c)); });
    };
    const auto* const entry = std::ranges::find_if(kClasses, isNamed);
    if (entry == std::end(kClasses)) {
        return std::nullopt;
    }
    Set set;
    for (std::size_t c = 0; c < set.size(); ++c) {
        set[c] = entry->contains(static_cast<int>(c));
    }
    return set;
}

std::optional<PatternCharacters::Set> PatternCharacters::FindEquivalenceClass(std::string_view name) {
    m_work += kClassWork;
    const auto element = FindElement(name);
    if (!element) {
        return std::nullopt;
    }
    Set set;
    for (std::size_t c = 0; c < set.size(); ++c) {
        set[c] = ToLower(static_cast<int>(c)) == ToLower(*element);
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
        const auto element = FindElement(name);
        return element ? Symbol{Kind::kElement, *element, {}} : Symbol{};
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
