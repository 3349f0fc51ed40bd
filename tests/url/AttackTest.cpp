// Patterns and links of strangers are answered soon, on a small stack.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>

#include "velm/core/Thread.h"
#include "velm/core/ThreadConfig.h"
#include "velm/UrlSchemeUtil.h"

namespace velm {
namespace {

constexpr std::size_t kMegabyte = 1U << 20;

// Other programs run too: an attack may be tried again when it took too long.
constexpr int kMostTries = 20;
constexpr auto kMostTime = std::chrono::milliseconds(VELM_TEST_MILLISECONDS);

std::string Repeated(std::string_view piece, std::size_t count) {
    std::string text;
    for (; count > 0; --count) {
        text += piece;
    }
    return text;
}

template <typename Call>
void ExpectSoon(bool expected, Call call) {
    auto elapsed = std::chrono::steady_clock::duration::max();
    for (int i = 0; i < kMostTries && elapsed > kMostTime; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        const bool accepted = call();
        elapsed = std::min(elapsed, std::chrono::steady_clock::now() - begin);
        EXPECT_EQ(accepted, expected);
    }
    EXPECT_LE(elapsed, kMostTime);
}

// Each overflows the stack, or takes seconds to centuries, in the standard library.
int RunAttacks(void*) {
    const std::string as(kMegabyte, 'a');
    const std::string longest(1U << 14, 'a');
    const struct {
        std::string pattern;
        std::string text;
        bool accepted;
    } attacks[] = {
        {"(a+)+b", as, false},
        {"(a|b)*c", Repeated("ab", kMegabyte / 2) + 'c', true},
        {"((a*)*)*", std::string(kMegabyte / 4, 'a'), true},
        {".*.*.*.*.*x", as, false},
        {"\\w+", std::string(4 * kMegabyte, 'a'), true},  // a step for each character
        {"(a*)*\\1b", as, false},
        {"(?!(?!(a|aa)*b))a*", as, false},
        {"(x+x+)+(?!y)y", Repeated("x", 64), false},
        {Repeated("(", 8000) + Repeated(")", 8000), "", true},
        {Repeated("(?:", 40) + 'a' + Repeated(")*", 40), "aaa", true},
        {Repeated("(", 4000) + Repeated(")*", 4000), "a", false},
        {Repeated("(?=", 16) + Repeated(")", 16), "", true},
        {Repeated("(?=", 17) + Repeated(")", 17), "", false},
        {"a{1000}{1000}", as, false},
        {Repeated("(?:){65000}", 1400), "", false},
        {"(a?){1000}", std::string(1000, 'a'), true},
        {"a{99999999999999999999}", "", false},
        {"a" + Repeated("*", 16000), "a", false},
        {"[" + Repeated("[=a=]", 3000) + "]", "a", true},
        {Repeated("\\w", 8000), Repeated("a", 8000), true},
        {longest, longest, true},
        {longest + 'a', longest + 'a', false},
    };
    for (const auto& attack : attacks) {
        SCOPED_TRACE(attack.pattern.substr(0, 40) + " on " + attack.text.substr(0, 8) + "... of " +
                     std::to_string(attack.text.size()));
        std::string pattern = attack.pattern;
        for (char& c : pattern) {
            c = static_cast<char>(33 + (c + 14) % 94);
        }
        ExpectSoon(attack.accepted, [&] { return UrlSchemeUtil::checkDomain(attack.text, pattern) == 0U; });
    }
    const std::string labels = Repeated("a-a.", kMegabyte / 4);
    const auto read = [](const std::string& link, std::string url = "https") {
        std::string title;
        std::string ticket;
        return UrlSchemeUtil::read(link, url, title, ticket) == 0U;
    };
    const std::string connect = "velm://connect/play.velm.example/" + as + "?title=T&ticket=K";
    ExpectSoon(true, [&] { return read(connect); });
    ExpectSoon(false, [&] { return read(connect + '!'); });
    ExpectSoon(true, [&] { return read("velm:" + labels + "play.velm.example;" + as + ";" + as); });
    ExpectSoon(false, [&] { return read("velm:" + labels + "play.velm.test;T;K"); });
    ExpectSoon(true,
               [&] { return read("velm://resume?title=T&ticket=K", "https://play.velm.example/" + as); });
    return 0;
}

TEST(Attack, IsAnsweredSoonOnASmallStack) {
    ThreadConfig config;
    config.SetStackSize(1U << 20);
    Thread thread;
    ASSERT_EQ(thread.Initialize(config, RunAttacks, nullptr), 0U);
    ASSERT_EQ(thread.Start(nullptr), 0U);
    EXPECT_EQ(thread.Join(nullptr), 0U);
}

}  // namespace
}  // namespace velm
