#include "velm/UrlParser.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "RandomSeed.h"

namespace velm {
namespace {

using Parameters = std::map<std::string, std::string>;

std::vector<std::string> PartsOf(const UrlParser& parser) {
    return {parser.Url(),  parser.Scheme(), parser.Authority(),
            parser.Path(), parser.Query(),  parser.Fragment()};
}

const std::vector<std::string> kNoParts(6);

TEST(UrlParser, AskingForAnUnknownParameterAddsIt) {
    UrlParser parser;
    ASSERT_EQ(parser.Parse("x?a=1"), 0U);
    EXPECT_STREQ(parser.Param("a"), "1");
    EXPECT_STREQ(parser.Param("A"), "");
    EXPECT_EQ(parser.ParamMap(), (Parameters{{"A", ""}, {"a", "1"}}));
    ASSERT_EQ(parser.Parse("y"), 0U);
    EXPECT_EQ(parser.ParamMap(), Parameters());
}

TEST(UrlParser, ItsOwnTextAndNoTextMayBeParsed) {
    UrlParser parser;
    ASSERT_EQ(parser.Parse("s://h/p?k=v#f"), 0U);
    const UrlParser copy(parser);
    ASSERT_EQ(parser.Parse(parser.Path()), 0U);
    EXPECT_STREQ(parser.Url(), "/p");
    EXPECT_EQ(PartsOf(copy), (std::vector<std::string>{"s://h/p?k=v#f", "s", "h", "/p", "k=v", "f"}));
    EXPECT_EQ(parser.Parse(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(PartsOf(parser), kNoParts);
}

/// The components and the parameters as expressions give them; false when refused.
bool ParseByExpression(const std::string& url, std::vector<std::string>& parts, Parameters& parameters) {
    static const std::regex whole(R"(^(([^\:/?#]+)\:)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?)");
    static const std::regex pairs("([^=&]*=[^=&]*(&[^=&]*=[^=&]*)*)?");
    static const std::regex pair("([^=&]*)=([^=&]*)");
    std::smatch match;
    if (!std::regex_match(url, match, whole) || !std::regex_match(match.str(7), pairs)) {
        return false;
    }
    parts = {url, match.str(2), match.str(4), match.str(5), match.str(7), match.str(9)};
    parameters.clear();
    for (std::sregex_iterator at(match[7].first, match[7].second, pair); at != std::sregex_iterator(); ++at) {
        parameters[at->str(1)] = at->str(2);
    }
    return true;
}

constexpr int kRounds = 1000000 / VELM_TEST_SLOWDOWN;

TEST(UrlParser, EqualsTheExpressionOnRandomText) {
    const std::string_view alphabet = "::://///???###&&&&====aabZ09.-%+ \r\n\x7F\x80\xC3\xFF";
    std::mt19937 random = test::SeededRandom();
    UrlParser parser;
    std::string url;
    std::vector<std::string> parts;
    Parameters parameters;
    int accepted = 0;
    for (int i = 0; i < kRounds; ++i) {
        url.resize(random() % 24);
        for (char& c : url) {
            c = alphabet[random() % alphabet.size()];
        }
        const bool expected = ParseByExpression(url, parts, parameters);
        accepted += expected ? 1 : 0;
        ASSERT_EQ(parser.Parse(url.c_str()) == 0U, expected) << url;
        ASSERT_EQ(PartsOf(parser), expected ? parts : kNoParts) << url;
        ASSERT_EQ(parser.ParamMap(), expected ? parameters : Parameters()) << url;
    }
    EXPECT_GT(accepted, kRounds / 10);
    EXPECT_LT(accepted, kRounds);
}

}  // namespace
}  // namespace velm
