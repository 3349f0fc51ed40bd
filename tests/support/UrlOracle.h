#pragma once

#include <map>
#include <regex>
#include <string>
#include <vector>

#include "velm/UrlParser.h"

namespace velm::test {

/// The components, then the parameters, as text.
using UrlParts = std::vector<std::string>;

inline UrlParts WithParameters(UrlParts parts, const std::map<std::string, std::string>& parameters) {
    for (const auto& [name, value] : parameters) {
        parts.push_back(name + '=' + value);
    }
    return parts;
}

inline UrlParts PartsOf(const UrlParser& parser) {
    return WithParameters(
        {parser.Url(), parser.Scheme(), parser.Authority(), parser.Path(), parser.Query(), parser.Fragment()},
        parser.ParamMap());
}

/// The same from the regular expression of RFC 3986 and a simple split of the query; six empty texts if the
/// URL is invalid. Stack use grows with the length.
inline UrlParts PartsByExpression(const std::string& url) {
    static const std::regex whole(R"(^(([^\:/?#]+)\:)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?)");
    static const std::regex pairs("([^=&]*=[^=&]*(&[^=&]*=[^=&]*)*)?");
    static const std::regex pair("([^=&]*)=([^=&]*)");
    std::smatch match;
    if (!std::regex_match(url, match, whole) || !std::regex_match(match.str(7), pairs)) {
        return UrlParts(6);
    }
    std::map<std::string, std::string> parameters;
    for (std::sregex_iterator at(match[7].first, match[7].second, pair); at != std::sregex_iterator(); ++at) {
        parameters[at->str(1)] = at->str(2);
    }
    return WithParameters({url, match.str(2), match.str(4), match.str(5), match.str(7), match.str(9)},
                          parameters);
}

}  // namespace velm::test
