// UrlSchemeUtil::read with one accepted and one refused link, against std::regex.
#include <iterator>
#include <memory>
#include <regex>
#include <string>

#include "Families.h"
#include "url/Scramble.h"
#include "url/StoredPatterns.h"
#include "velm/UrlSchemeUtil.h"

namespace velm::bench {
namespace {

const std::string kLinks[] = {
    "velm://connect/eu.play.velm.example:443/session/start?title=TITLE-1&ticket=abc.def~0123456789",
    "velm://connect/eu.play.velm.example@evil.test/session?title=TITLE-1&ticket=abc.def~0123456789",
};

void ReadBoth() {
    for (const std::string& link : kLinks) {
        std::string url = "https";
        std::string title;
        std::string ticket;
        Keep(UrlSchemeUtil::read(link, url, title, ticket));
    }
}

/// Does the work of `read` with std::regex: the link patterns, then the service patterns if one matches.
void ReadByExpressions(const std::string& link) {
    const auto expressionOf = [](std::string_view scrambled) { return std::regex(Unscramble(scrambled)); };
    std::vector<std::regex> expressions;
    for (const LinkPattern& pattern : kLinkPatterns) {
        expressions.push_back(expressionOf(pattern.scrambled));
    }
    std::smatch match;
    if (!std::regex_match(link, match, expressions[0])) {
        Keep(std::regex_match(link, match, expressions[1]) || std::regex_match(link, match, expressions[2]));
        return;
    }
    const std::string url = "https://" + match.str(1);
    int matches = 0;
    for (const std::string_view pattern : kServicePatterns) {
        matches += std::regex_match(url, expressionOf(pattern)) ? 1 : 0;
    }
    Keep(matches);
}

/// Reads a link of `size` bytes, most of them in the address.
Contender ReadLong(std::size_t size) {
    std::string link = "velm://connect/play.velm.example/";
    link.append(size > link.size() ? size - link.size() : 0, 'a');
    return Repeat("UrlSchemeUtil::read", [link] {
        std::string url = "https";
        std::string title;
        std::string ticket;
        Keep(UrlSchemeUtil::read(link, url, title, ticket));
    });
}

}  // namespace

void MeasureLinks(Suite& suite) {
    const Contender expressions = Repeat("std::regex compiled per link", [] {
        for (const std::string& link : kLinks) {
            ReadByExpressions(link);
        }
    });
    suite.Compare("UrlSchemeUtil", "read, one valid and one invalid link",
                  Repeat("UrlSchemeUtil::read", ReadBoth), {{expressions, 3.0}});
    suite.MeasureCurve(
        "UrlSchemeUtil: read", "bytes of the link", Growth::kWithSize, {50, 100, 1e3, 1e4, 1e5, 1e6},
        [](double size) -> std::vector<Contender> { return {ReadLong(static_cast<std::size_t>(size))}; },
        1e3);
}

}  // namespace velm::bench
