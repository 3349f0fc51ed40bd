#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string_view>

namespace velm {

/// Reads those parts of an expression that stand for one character of the text: escapes, classes and bracket
/// expressions. Classes and named elements are those of the "C" locale, whatever locale the process is in:
/// what is accepted must not hang on it.
class PatternCharacters {
public:
    using Set = std::bitset<256>;

    /// @param rest  what is left of the expression, the compiler's; reading shortens it
    explicit PatternCharacters(std::string_view& rest) : m_rest(rest) {}

    /// A bracket expression, from behind its "[" to its "]"; empty when it is not valid.
    std::optional<Set> ReadBracket();

    /// The character that an escape stands for, from behind its `\` and `letter`; empty when it is not valid.
    std::optional<char> ReadEscape(char letter);

    /// The characters of a class; empty when there is none of the name.
    /// @param name  such as "alpha"; "d", "s" and "w" have one too
    std::optional<Set> FindClass(std::string_view name);

    /// What classes took so far, counted in characters.
    std::size_t Work() const { return m_work; }

private:
    enum class Kind { kEnd, kDash, kCharacter, kSet, kElement, kBad };
    struct Symbol {
        Kind kind = Kind::kBad;
        char character = 0;
        Set set;
    };

    Symbol ReadSymbol();
    Symbol ReadNamedSymbol();
    Symbol ReadEscapedSymbol();
    std::optional<Set> FindEquivalenceClass(std::string_view name);

    std::string_view& m_rest;
    std::size_t m_work = 0;
};

}  // namespace velm
