// UrlParser on any text; short text is held against the expression of RFC 3986 and plain splitting.
#include <map>
#include <regex>

#include "Fuzz.h"
#include "velm/UrlParser.h"

namespace {

constexpr std::size_t kMostForTheExpression = 200;  // it uses the stack for every character

/// The parameters; false when a piece of the query is none.
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

void HoldAgainstTheExpression(const std::string& url, velm::UrlParser& parser, bool parsed) {
    static const std::regex expression(R"(^(([^\:/?#]+)\:)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?)");
    std::smatch match;
    std::map<std::string, std::string> parameters;
    const bool expected = std::regex_match(url, match, expression) && SplitQuery(match.str(7), parameters);
    VELM_FUZZ_DEMAND(parsed == expected);
    if (expected) {
        VELM_FUZZ_DEMAND(parser.Scheme() == match.str(2) && parser.Authority() == match.str(4));
        VELM_FUZZ_DEMAND(parser.Path() == match.str(5));
        VELM_FUZZ_DEMAND(parser.Query() == match.str(7) && parser.ParamMap() == parameters);
        VELM_FUZZ_DEMAND(parser.Fragment() == match.str(9));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string url(TextOf(data, size).c_str());
    velm::UrlParser parser;
    const bool parsed = parser.Parse(url.c_str()) == 0U;
    VELM_FUZZ_DEMAND(parser.Url() == (parsed ? url : ""));
    if (url.size() <= kMostForTheExpression) {
        HoldAgainstTheExpression(url, parser, parsed);
    }
    return 0;
}
