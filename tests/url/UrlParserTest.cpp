#include "velm/UrlParser.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

#include "Random.h"
#include "UrlOracle.h"

namespace velm::url_parser_test {

TEST(UrlParser, ParsesItsOwnTextAndNull) {
    UrlParser parser;
    ASSERT_EQ(parser.Parse("s://h/p?k=v#f"), 0U);
    const UrlParser copy(parser);
    EXPECT_EQ(parser.Param("k") + std::string(parser.Param("K")), "v");
    EXPECT_EQ(test::PartsOf(parser)[6], "K=");  // Param added it
    ASSERT_EQ(parser.Parse(parser.Path()), 0U);
    EXPECT_EQ(test::PartsOf(parser), test::PartsByExpression("/p"));
    EXPECT_EQ(test::PartsOf(copy), test::PartsByExpression("s://h/p?k=v#f"));
    EXPECT_EQ(parser.Parse(nullptr), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(test::PartsOf(parser), test::UrlParts(6));
}

TEST(UrlParser, MatchesTheExpressionOnRandomText) {
    const std::string_view alphabet = "::://///???###&&&&====aabZ09.-%+ \r\n\x7F\x80\xC3\xFF";
    std::mt19937 random = test::SeededRandom();
    UrlParser parser;
    for (int i = 0; i < 200000 / VELM_TEST_SLOWDOWN; ++i) {
        std::string url(1 + random() % 23, ' ');
        for (char& c : url) {
            c = alphabet[random() % alphabet.size()];
        }
        const test::UrlParts expected = test::PartsByExpression(url);
        ASSERT_EQ(parser.Parse(url.c_str()) != 0U, expected[0].empty()) << url;
        ASSERT_EQ(test::PartsOf(parser), expected) << url;
    }
}

// More than 128 parameters are sorted before they go into the map.
TEST(UrlParser, KeepsTheLastOfManyEqualNames) {
    std::mt19937 random = test::SeededRandom();
    std::map<std::string, std::string> expected{{"a", "b"}};
    std::string url = "s://h/p?a=b";
    for (int i = 0; i < 300; ++i) {
        const std::string name = std::string(random() % 12, 'a') + "ab"[random() % 2];
        expected[name] = std::to_string(i);
        url += '&' + name + '=' + expected[name];
    }
    UrlParser parser;
    ASSERT_EQ(parser.Parse(url.c_str()), 0U);
    EXPECT_EQ(parser.ParamMap(), expected);
}

}  // namespace velm::url_parser_test
