#pragma once

#include <optional>
#include <string_view>

namespace velm {

/// The read position in an expression. The compiler owns it; PatternCharacters reads through it, too.
class PatternCursor {
public:
    explicit PatternCursor(std::string_view expression) : m_rest(expression) {}

    bool AtEnd() const { return m_rest.empty(); }

    /// The next character. Not at the end.
    char Take() {
        const char c = m_rest.front();
        m_rest.remove_prefix(1);
        return c;
    }

    /// Consumes the next character if it is `c`.
    bool Accept(char c) {
        const bool accepted = m_rest.starts_with(c);
        m_rest.remove_prefix(accepted ? 1 : 0);
        return accepted;
    }

    /// Consumes a digit below `base`, at most 16, and returns its value; empty if none follows.
    std::optional<unsigned int> AcceptDigit(unsigned int base = 10) {
        constexpr std::string_view digits = "00112233445566778899AaBbCcDdEeFf";
        const std::size_t index = AtEnd() ? digits.npos : digits.find(m_rest.front());
        if (index >= 2 * base) {
            return std::nullopt;
        }
        m_rest.remove_prefix(1);
        return static_cast<unsigned int>(index / 2);
    }

    /// Consumes everything up to and including `end`, and returns what precedes it; empty without an `end`.
    std::optional<std::string_view> TakeUntil(std::string_view end) {
        const std::size_t size = m_rest.find(end);
        if (size == m_rest.npos) {
            return std::nullopt;
        }
        const std::string_view taken = m_rest.substr(0, size);
        m_rest.remove_prefix(size + end.size());
        return taken;
    }

private:
    std::string_view m_rest;
};

}  // namespace velm
