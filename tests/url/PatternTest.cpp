// The caller's patterns, as UrlSchemeUtil::checkDomain runs them.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

#include "velm/core/Thread.h"
#include "velm/core/ThreadConfig.h"
#include "velm/UrlSchemeUtil.h"

namespace velm {
namespace {

std::string Scrambled(std::string text) {
    for (char& c : text) {
        c = c >= 33 && c <= 126 ? static_cast<char>(33 + (c + 14) % 94) : c;
    }
    return text;
}

constexpr int kRounds = 50000 / VELM_TEST_SLOWDOWN;

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
    const auto seed = std::random_device()();
    std::mt19937 random(seed);
    const std::string_view alphabet("aaabbbc1 _.\n\0\xC3", 14);
    int matches = 0;
    for (int i = 0; i < kRounds; ++i) {
        const std::string pattern = RandomPattern(random);
        std::string text(random() % 6, ' ');
        std::generate(text.begin(), text.end(), [&] { return alphabet[random() % alphabet.size()]; });
        const bool expected = MatchesStandard(text, pattern);
        matches += expected ? 1 : 0;
        ASSERT_EQ(Matches(text, pattern), expected)
            << "seed " << seed << ", pattern \"" << pattern << "\", text \"" << text << '"';
    }
    EXPECT_GT(matches, kRounds / 100);
}

// Found by random tests.
TEST(Pattern, AcceptsWhatOnceDiffered) {
    const struct {
        const char* pattern;
        const char* text;
    } cases[] = {
        {".??{0,}*+b", "ab"},  // a loop in which no way could go on
        {"\\w*?*[a-b-c][\\D]?", "b_"},
    };
    for (const auto& [pattern, text] : cases) {
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
    for (const std::string& pattern : {abc, abc + '\0' + "(", abc + '\0'}) {
        EXPECT_EQ(UrlSchemeUtil::checkDomain("abc", pattern), 0U);
        for (const char* const text : {"xabc", "abcx", "ABC", ""}) {
            EXPECT_EQ(UrlSchemeUtil::checkDomain(text, pattern), VELM_ERROR_UTIL_INVALID_PARAM) << text;
        }
    }
    EXPECT_EQ(UrlSchemeUtil::checkDomain("abc", "^abc$"), VELM_ERROR_UTIL_INVALID_PARAM);
    EXPECT_EQ(UrlSchemeUtil::checkDomain("P !\x80", "! P\x80"), 0U);  // no rotation of blanks and high bytes
    EXPECT_EQ(UrlSchemeUtil::checkDomain(std::string("a\0b", 3), Scrambled("a.b")), 0U);
}

std::string Repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (; count > 0; --count) {
        text += piece;
    }
    return text;
}

constexpr std::size_t kMegabyte = 1U << 20;

// Other programs run too: an attack may be tried again when it took too long.
constexpr int kMostTries = 20;
constexpr auto kMostTime = std::chrono::milliseconds(VELM_TEST_MILLISECONDS);

const std::string& EveryByte() {
    static const std::string text = [] {
        std::string bytes(kMegabyte, '\0');
        std::generate(bytes.begin(), bytes.end(), [next = 0]() mutable { return static_cast<char>(++next); });
        return bytes;
    }();
    return text;
}

struct Attack {
    std::string pattern;
    std::string text;
    bool accepted;
};

// Each overflows the stack, or takes seconds to centuries, in the standard library.
const std::vector<Attack>& Attacks() {
    const std::string as(kMegabyte, 'a');
    const std::string abs = Repeated("ab", kMegabyte / 2);
    static const std::vector<Attack> attacks = {
        {"(a+)+b", as, false},
        {"(a|b)*c", abs, false},
        {"(a|b)*c", abs + 'c', true},
        {"((a*)*)*", std::string(kMegabyte / 4, 'a'), true},
        {"((a*)*)*", as + 'b', false},
        {"(a|a|aa)*b", as, false},
        {".*.*.*.*.*x", as, false},
        {"[^]*", EveryByte(), true},
        {"(a*)*\\1b", as, false},
        {"(?=(a+)+b).*", as, false},
        {"(?!(?!(a|aa)*b))a*", as, false},
        {"(x+x+)+(?!y)y", Repeated("x", 64), false},
        {Repeated("(", 10000) + Repeated(")", 6000), "", false},
        {Repeated("(", 8000) + Repeated(")", 8000), "", true},
        {Repeated("(", 4000) + Repeated(")*", 4000), "a", false},
        {Repeated("(?=", 16) + Repeated(")", 16), "", true},
        {Repeated("(?=", 17) + Repeated(")", 17), "", false},
        {"a{1000}{1000}", as, false},
        {"(((a{100}){100}){100}){0}", "", false},
        {Repeated("(?:){65000}", 1400), "", false},
        {"(a?){1000}", std::string(1000, 'a'), true},
        {"a{99999999999999999999}", "", false},
        {"a" + Repeated("*", 16000), "a", false},
        {"[" + Repeated("[=a=]", 3000) + "]", "a", true},
        {Repeated("\\w", 8000), Repeated("a", 8000), true},
        {std::string(kMegabyte, 'a'), as, false},
        {std::string(kMegabyte, '('), as, false},
        {EveryByte(), EveryByte(), false},
    };
    return attacks;
}

int RunAttacks(void*) {
    for (const Attack& attack : Attacks()) {
        SCOPED_TRACE(attack.pattern.substr(0, 40) + " on " + attack.text.substr(0, 8) + "... of " +
                     std::to_string(attack.text.size()));
        const std::string pattern = Scrambled(attack.pattern);
        auto elapsed = std::chrono::steady_clock::duration::max();
        for (int i = 0; i < kMostTries && elapsed > kMostTime; ++i) {
            const auto begin = std::chrono::steady_clock::now();
            const bool accepted = UrlSchemeUtil::checkDomain(attack.text, pattern) == 0U;
            elapsed = std::min(elapsed, std::chrono::steady_clock::now() - begin);
            EXPECT_EQ(accepted, attack.accepted);
        }
        EXPECT_LE(elapsed, kMostTime);
    }
    return 0;
}

TEST(Pattern, AttacksAreAnsweredSoonOnASmallStack) {
    ThreadConfig config;
    config.SetStackSize(1U << 20);
    Thread thread;
    ASSERT_EQ(thread.Initialize(config, RunAttacks, nullptr), 0U);
    ASSERT_EQ(thread.Start(nullptr), 0U);
    EXPECT_EQ(thread.Join(nullptr), 0U);
}

}  // namespace
}  // namespace velm
