// The caller's patterns, as UrlSchemeUtil::checkDomain runs them.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <regex>
#include <string>
#include <string_view>

#include "RandomSeed.h"
#include "velm/UrlSchemeUtil.h"

namespace velm {
namespace {

std::string Scrambled(std::string text) {
    for (char& c : text) {
        c = c >= 33 && c <= 126 ? static_cast<char>(33 + (c + 14) % 94) : c;
    }
    return text;
}

constexpr int kPatternRounds = 50000 / VELM_TEST_SLOWDOWN;

bool Matches(const std::string& text, const std::string& plainPattern) {
    return UrlSchemeUtil::checkDomain(text, Scrambled(plainPattern)) == 0U;
}

bool MatchesStandard(const std::string& text, const std::string& pattern) {
    try {
        return std::regex_match(text, std::regex(pattern));
    } catch (const std::regex_error&) {
        return false;
    }
}

std::string RandomPattern(std::mt19937& random) {
    static const char* const pieces[] = {
        "a",     "b",      "c",       "a",     "b",         ".",           "|",        "|",        "(",
        "(",     ")",      ")",       "(?:",   "(?:",       ")",           "(?=",      "(?!",      "^",
        "$",     "\\b",    "\\B",     "\\1",   "\\2",       "[ab]",        "[^a]",     "[a-c]",    "[]",
        "[^]",   "[",      "]",       "-",     "\\w",       "\\W",         "\\d",      "\\s",      "[\\w]",
        "[\\D]", "\\x61",  "\\u0062", "\\cb",  "\\0",       "\\n",         "\\.",      "\\",       "{",
        "}",     "{,2}",   "\xC3",    "[a-]",  "[[.a.]-c]", "[[:alpha:]]", "[[=b=]]",  "[[:x:]]",  "\n",
        "[--b]", "[\\d-]", "[\\b]",   "[\\B]", "[[]",       "[a-\\d]",     "[\xC3-b]", "[b-\xC3]", "[a-b-c]"};
    static const char* const quantifiers[] = {"*",   "*",     "+",    "?",     "*?",  "+?",   "??",
                                              "{2}", "{1,2}", "{0,}", "{1,}?", "{0}", "{2,1}"};
    // The standard library takes exponential time for quantifiers of quantifiers: three are enough, and texts
    // of up to five characters.
    std::string pattern;
    int left = 3;
    for (std::size_t count = 1 + random() % 9; count > 0; --count) {
        pattern += pieces[random() % std::size(pieces)];
        if (left > 0 && random() % 3 == 0) {
            pattern += quantifiers[random() % std::size(quantifiers)];
            --left;
        }
    }
    return pattern;
}

TEST(Pattern, AcceptsWhatTheStandardLibraryAccepts) {
    std::mt19937 random = test::SeededRandom();
    const std::string_view alphabet("aaabbbc1 _.\n\0\xC3", 14);
    int matches = 0;
    for (int i = 0; i < kPatternRounds; ++i) {
        const std::string pattern = RandomPattern(random);
        std::string text(random() % 6, ' ');
        std::generate(text.begin(), text.end(), [&] { return alphabet[random() % alphabet.size()]; });
        const bool expected = MatchesStandard(text, pattern);
        matches += expected ? 1 : 0;
        ASSERT_EQ(Matches(text, pattern), expected)
            << "pattern \"" << pattern << "\", text \"" << text << '"';
    }
    EXPECT_GT(matches, kPatternRounds / 100);
}

// Too rare for random tests: loops in which no way could go on, or whose turns are empty; a look-ahead that
// looks at the same place twice; what was captured, again.
TEST(Pattern, AcceptsWhatTheStandardLibraryAcceptsInRareCases) {
    for (const auto& [pattern, text] : {std::pair{".??{0,}*+b", "ab"},
                                        {"\\w*?*[a-b-c][\\D]?", "b_"},
                                        {"(?:)*x|(?:)*?y|a(?=)", "a"},
                                        {"(?:(?=.*b)a)*b", "aab"},
                                        {"(a|b)c\\1", "aca"},
                                        {"(a|b)c\\1", "acb"},
                                        {"(a\\1)", "a"},
                                        {"(.)(.)(.)(.)(.)(.)(.)(.)(.)(.)\\10", "abcdefghijj"},
                                        {"(a)(b\\1)", "aba"},
                                        {"(a)(b\\1)", "abab"}}) {
        EXPECT_EQ(Matches(text, pattern), MatchesStandard(text, pattern)) << pattern;
    }
}

TEST(Pattern, NamesTheCharactersThatTheStandardLibraryNames) {
    const char* const brackets[] = {
        "[[:alnum:]]", "[[:alpha:]]",  "[[:blank:]]", "[[:cntrl:]]", "[[:digit:]]",   "[[:graph:]]",
        "[[:lower:]]", "[[:print:]]",  "[[:punct:]]", "[[:space:]]", "[[:upper:]]",   "[[:xdigit:]]",
        "[[:d:]]",     "[[:w:]]",      "[[:s:]]",     "[[:ALPHA:]]", "[[:alph:]]",    "[[.comma.]]",
        "[[.NUL.]]",   "[[.DEL.]-~]",  "[[.zero.]]",  "[[.q.]]",     "[[.tilde.]]",   "[[.space.]-[.comma.]]",
        "[[=a=]]",     "[[=hyphen=]]", "[b-b]",       "[b-a]",       "[[.IS1.]]",     "[[.grave-accent.]]",
        "[[..]]",      "[[.commas.]]", "[[.com.]]",   "[[==]]",      "[[.newline.]]", "[[.commercial-at.]]"};
    for (const char* const bracket : brackets) {
        for (int byte = 0; byte < 256; ++byte) {
            const std::string text(1, static_cast<char>(byte));
            ASSERT_EQ(Matches(text, bracket), MatchesStandard(text, bracket)) << bracket << " and " << byte;
        }
    }
}

TEST(Pattern, EndsAtItsFirstNulAndIsScrambled) {
    const std::string abc = Scrambled("^abc$");
    EXPECT_EQ(UrlSchemeUtil::checkDomain("abc", abc + '\0' + "("), 0U);
    EXPECT_EQ(UrlSchemeUtil::checkDomain("abc", "^abc$"), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(UrlSchemeUtil::checkDomain("P !\x80", "! P\x80"), 0U);  // no rotation of blanks and high bytes
}

}  // namespace
}  // namespace velm
