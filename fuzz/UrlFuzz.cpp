// UrlParser on arbitrary text; short text is compared with the regular expression of RFC 3986 and naive
// splitting.
#include <cstddef>
#include <cstdint>
#include <map>
#include <regex>
#include <string>

#include "Fuzz.h"
#include "velm/UrlParser.h"

namespace {

constexpr std::size_t kMaxRegexLength = 200;  // std::regex uses stack for every character

/// Splits a query into parameters; false if a piece is not a parameter.
bool SplitQuery(const std::string& query, std::map<std::string, std::string>& parameters) {
    for (std::size_t begin = 0; !query.empty() && begin <= query.size();) {
        const std::size_t end = std::min(query.find('&', begin), query.size());
        const std::string piece = query.substr(begin, end - begin);
        const std::size_t equals = piece.find('=');
        if (equals == piece.npos || piece.find('=', equals + 1) != piece.npos) {
            return false;
        }
        parameters[piece.substr(0, equals)] = piece.substr(equals + 1);
        begin = end + 1;
    }
    return true;
}

void CompareWithRegex(const std::string& url, velm::UrlParser& parser, bool parsed) {
    static const std::regex expression(R"(^(([^\:/?#]+)\:)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?)");
    std::smatch match;
    std::map<std::string, std::string> parameters;
    const bool expected = std::regex_match(url, match, expression) && SplitQuery(match.str(7), parameters);
    VELM_FUZZ_DEMAND(parsed == expected);
    if (expected) {
        VELM_FUZZ_DEMAND(parser.Scheme() == match.str(2));
        VELM_FUZZ_DEMAND(parser.Authority() == match.str(4));
        VELM_FUZZ_DEMAND(parser.Path() == match.str(5));
        VELM_FUZZ_DEMAND(parser.Query() == match.str(7));
        VELM_FUZZ_DEMAND(parser.Fragment() == match.str(9));
        VELM_FUZZ_DEMAND(parser.ParamMap() == parameters);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string url(std::string(reinterpret_cast<const char*>(data), size).c_str());
    velm::UrlParser parser;
    const bool parsed = parser.Parse(url.c_str()) == 0U;
    VELM_FUZZ_DEMAND(parser.Url() == (parsed ? url : ""));
    if (url.size() <= kMaxRegexLength) {
        CompareWithRegex(url, parser, parsed);
    }
    return 0;
}
