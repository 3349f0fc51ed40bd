#include "url/pattern/PatternCharacters.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace velm {
namespace {

constexpr unsigned int kLargestCode = 0xFF;  // text is bytes
constexpr int kControlMask = 0x1F;

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

/// The POSIX names of all characters except letters; a letter is its own name.
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

/// The character with a name; empty if the name is unknown.
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

template <typename Contains>
PatternSet SetOf(Contains contains) {
    PatternSet set;
    for (std::size_t c = 0; c < set.size(); ++c) {
        set[c] = contains(static_cast<int>(c));
    }
    return set;
}

/// The characters of a class such as "alpha", whose name is case-insensitive; empty if the name is unknown.
std::optional<PatternSet> FindClass(std::string_view name) {
    const auto isNamed = [name](const auto& entry) {
        return std::ranges::equal(entry.name, name, {}, {},
                                  [](char c) { return static_cast<char>(ToLower(c)); });
    };
    const auto* const entry = std::ranges::find_if(kClasses, isNamed);
    return entry == std::end(kClasses) ? std::nullopt : std::optional(SetOf(entry->contains));
}

/// A letter in both cases, or any other element alone; empty if the name is unknown.
std::optional<PatternSet> FindEquivalenceClass(std::string_view name) {
    const auto element = FindElement(name);
    if (!element) {
        return std::nullopt;
    }
    return SetOf([element](int c) { return ToLower(c) == ToLower(*element); });
}

}  // namespace

/// The part of a bracket expression read so far.
struct PatternCharacters::Bracket {
    PatternSet set;
    enum { kNothing, kCharacter, kClass } previous = kNothing;  // what a dash would follow
    char first = 0;                                             // of a range, if `previous` is kCharacter

    void Add(const Symbol& symbol) {
        set |= symbol.set;
        first = symbol.character;
        previous = symbol.kind == Kind::kClass ? kClass : kCharacter;
        if (previous == kCharacter) {
            set.set(Byte(first));
        }
    }

    /// Adds the range that ends with `last`; false if it is invalid. As in the standard library, a named
    /// element may begin a range but not end one, and characters are ordered as char is.
    bool AddRange(const Symbol& last) {
        const bool isCharacter = last.kind == Kind::kDash || last.kind == Kind::kCharacter;
        if (previous != kCharacter || !isCharacter || first > last.character) {
            return false;
        }
        // NOLINTNEXTLINE(bugprone-signed-char-misuse): char's own order
        for (int c = first; c <= last.character; ++c) {
            set.set(Byte(static_cast<char>(c)));
        }
        previous = kNothing;
        return true;
    }
};

std::optional<PatternSet> PatternCharacters::ReadBracket() {
    const bool negated = m_cursor.Accept('^');
    Bracket bracket;
    Symbol symbol = ReadSymbol();
    if (symbol.kind == Kind::kDash) {
        symbol.kind = Kind::kCharacter;
    }
    while (symbol.kind != Kind::kEnd) {
        if (symbol.kind == Kind::kInvalid) {
            return std::nullopt;
        }
        if (symbol.kind != Kind::kDash) {
            bracket.Add(symbol);
            symbol = ReadSymbol();
            continue;
        }
        symbol = ReadSymbol();
        if (symbol.kind == Kind::kEnd || bracket.previous == Bracket::kNothing) {  // a literal dash
            bracket.Add({Kind::kCharacter, '-', {}});
        } else if (bracket.AddRange(symbol)) {
            symbol = ReadSymbol();
        } else {
            return std::nullopt;
        }
    }
    return negated ? ~bracket.set : bracket.set;
}

std::optional<char> PatternCharacters::ReadEscape(char letter) {
    for (const auto& [escape, character] : kControlEscapes) {
        if (letter == escape) {
            return character;
        }
    }
    if (letter == 'c') {  // a control character: the low bits of the letter that follows
        const char control = m_cursor.AtEnd() ? '\0' : m_cursor.Take();
        const bool isLetter = IsLower(control) || IsUpper(control);
        return isLetter ? std::optional(static_cast<char>(control & kControlMask)) : std::nullopt;
    }
    if (letter != 'x' && letter != 'u') {
        return letter;
    }
    unsigned int code = 0;
    for (int digits = letter == 'x' ? 2 : 4; digits > 0; --digits) {
        const auto digit = m_cursor.AcceptDigit(16);
        if (!digit) {
            return std::nullopt;
        }
        code = code * 16 + *digit;
    }
    return code <= kLargestCode ? std::optional(static_cast<char>(code)) : std::nullopt;
}

std::optional<PatternSet> PatternCharacters::FindEscapedClass(char letter) {
    const char name = static_cast<char>(ToLower(letter));
    if (name != 'd' && name != 's' && name != 'w') {
        return std::nullopt;
    }
    const PatternSet set = *FindClass(std::string_view(&name, 1));
    return letter == name ? set : ~set;
}

PatternCharacters::Symbol PatternCharacters::ReadSymbol() {
    if (m_cursor.AtEnd()) {
        return {};
    }
    const char c = m_cursor.Take();
    switch (c) {
        case ']':
            return {Kind::kEnd, c, {}};
        case '-':
            return {Kind::kDash, c, {}};
        case '[':
            return ReadNamedSymbol();
        case '\\':
            return ReadEscapedSymbol();
        default:
            return {Kind::kCharacter, c, {}};
    }
}

/// "[:class:]", "[.element.]" or "[=element=]", after its first bracket; otherwise a literal bracket.
PatternCharacters::Symbol PatternCharacters::ReadNamedSymbol() {
    if (m_cursor.Accept('.')) {
        const auto name = m_cursor.TakeUntil(".]");
        const auto element = name ? FindElement(*name) : std::nullopt;
        return element ? Symbol{Kind::kElement, *element, {}} : Symbol{};
    }
    const bool isClass = m_cursor.Accept(':');
    if (!isClass && !m_cursor.Accept('=')) {
        return {Kind::kCharacter, '[', {}};
    }
    const auto name = m_cursor.TakeUntil(isClass ? ":]" : "=]");
    if (!name) {
        return {};
    }
    const auto set = isClass ? FindClass(*name) : FindEquivalenceClass(*name);
    return set ? Symbol{Kind::kClass, 0, *set} : Symbol{};
}

PatternCharacters::Symbol PatternCharacters::ReadEscapedSymbol() {
    if (m_cursor.AtEnd()) {
        return {};
    }
    const char letter = m_cursor.Take();
    if (const auto set = FindEscapedClass(letter)) {
        return {Kind::kClass, 0, *set};
    }
    if (letter == 'b') {
        return {Kind::kCharacter, '\b', {}};
    }
    if (letter == 'B' || (letter >= '1' && letter <= '9')) {  // matches no character
        return {};
    }
    const auto character = ReadEscape(letter);
    return character ? Symbol{Kind::kCharacter, *character, {}} : Symbol{};
}

}  // namespace velm
