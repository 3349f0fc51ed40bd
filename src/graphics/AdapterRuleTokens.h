#pragma once

#include <string>
#include <string_view>

namespace velm {

/// Where the JSON text of rules is invalid, and why.
struct AdapterRuleError {
    unsigned int line = 0;
    unsigned int column = 0;
    std::string message;
};

/// A JSON token.
struct AdapterRuleToken {
    char kind = '\0';      ///< '"' string, '0' number, 'a' word, NUL end of text; otherwise the token itself
    std::string_view raw;  ///< as written
    std::string text;      ///< the characters of a string, unescaped
};

/// Splits a JSON text into tokens, and finds the line and column of an error.
class AdapterRuleTokens {
public:
    /// @param text  must outlive the object
    AdapterRuleTokens(std::string_view text, AdapterRuleError& error);

    /// Reads the next token.
    /// @return false if it is malformed; the error is then reported
    bool Next();
    const AdapterRuleToken& Current() const { return m_current; }

    /// Reports an error.
    /// @param at  where in the text
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
