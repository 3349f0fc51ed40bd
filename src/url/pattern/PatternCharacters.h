#pragma once

#include <optional>
#include <string_view>

#include "url/pattern/PatternCursor.h"
#include "url/pattern/PatternProgram.h"

namespace velm {

/// Reads the parts of an expression that match one character: escapes, classes and bracket expressions.
/// Class and element names are those of the "C" locale, whatever the locale of the process.
class PatternCharacters {
public:
    static constexpr unsigned char Byte(char c) { return static_cast<unsigned char>(c); }

    explicit PatternCharacters(PatternCursor& cursor) : m_cursor(cursor) {}

    /// A bracket expression, after its "["; empty if invalid.
    std::optional<PatternSet> ReadBracket();

    /// The character that an escape stands for, after its `\` and `letter`; empty if invalid.
    std::optional<char> ReadEscape(char letter);

    /// The class of `\d`, `\s`, `\w` or of their complements; empty for any other letter.
    static std::optional<PatternSet> FindEscapedClass(char letter);

private:
    enum class Kind { kEnd, kDash, kCharacter, kClass, kElement, kInvalid };

    /// What a bracket expression is made of.
    struct Symbol {
        Kind kind = Kind::kInvalid;
        char character = 0;
        PatternSet set;
    };
    struct Bracket;

    Symbol ReadSymbol();
    Symbol ReadNamedSymbol();
    Symbol ReadEscapedSymbol();

    PatternCursor& m_cursor;
};

}  // namespace velm
