#pragma once

#include <optional>
#include <regex>
#include <string>

#include "velm/UrlSchemeUtil.h"

namespace velm::test {

inline bool Matches(const std::string& text, std::string pattern) {
    for (char& c : pattern) {
        c = c >= 33 && c <= 126 ? static_cast<char>(33 + (c + 14) % 94) : c;
    }
    return UrlSchemeUtil::checkDomain(text, pattern) == 0U;
}

/// The standard library's result; empty if it rejects the pattern.
inline std::optional<bool> MatchesStandard(const std::string& text, const std::string& pattern) {
    try {
        return std::regex_match(text, std::regex(pattern));
    } catch (const std::regex_error&) {
        return std::nullopt;
    }
}

/// Whether libstdc++ may differ from ECMAScript: `^`, `\b` or `\B` in a look-ahead, `\c`, and `\u` above
/// 00FF.
inline bool MayDiffer(const std::string& pattern) {
    static const std::regex departures(R"(\(\?[=!][^]*(\^|\\[bB])|\\c|\\u(?!00))");
    return std::regex_search(pattern, departures);
}

}  // namespace velm::test
