#pragma once

#include <string>
#include <string_view>

namespace velm {

/// Where a rules text is broken, and why.
struct AdapterRuleError {
    unsigned int line = 0;
    unsigned int column = 0;
    std::string message;
};

/// A token of JSON.
struct AdapterRuleToken {
    char kind = '\0';      ///< one of { } [ ] : , itself; '"' a string; '0' a number; 'a' a word; NUL the end
    std::string_view raw;  ///< as in the text
    std::string text;      ///< a string's characters
};

/// Splits a JSON text into tokens, and tells where in the text an error is.
class AdapterRuleTokens {
public:
    /// @param text  must outlive the object
    AdapterRuleTokens(std::string_view text, AdapterRuleError& error);

    /// Reads the next token.
    /// @return false after a malformed one, which has been reported
    bool Next();
    const AdapterRuleToken& Current() const { return m_current; }

    /// Reports an error.
    /// @param at  in the text
    /// @return false
    bool Fail(const char* at, const std::string& message);

private:
    bool ReadString();
    bool ReadEscape();
    bool ReadCodePoint();
    bool ReadHex(unsigned int* unit);
    bool Finish(char kind, const char* begin);

    const char* const m_begin;
    const char* m_at;
    const char* const m_end;
    AdapterRuleToken m_current;
    AdapterRuleError& m_error;
};

}  // namespace velm
