// UrlParser::Parse, parameters included, against the expression of RFC 3986 in the standard library and
// against uriparser; UrlSchemeUtil::read against the standard library's expressions.
#include <benchmark/benchmark.h>
#include <uriparser/Uri.h>

#include <iterator>
#include <memory>
#include <regex>
#include <string>

#include "Ratio.h"
#include "url/Scramble.h"
#include "url/StoredPatterns.h"
#include "velm/UrlParser.h"
#include "velm/UrlSchemeUtil.h"

namespace velm::bench {
namespace {

/// A URL of about `size` bytes: names in no order, values of 4 to 31 characters.
std::string MakeUrl(std::size_t size) {
    static const char* const names[] = {"title",  "ticket", "region", "codec",  "bitrate", "width",
                                        "height", "fps",    "audio",  "locale", "session", "client"};
    const std::string digits = "0123456789abcdef";
    std::string url = "https://play.velm.example/session?";
    std::uint32_t random = 1;
    for (std::size_t i = 0;; ++i) {
        random = random * 1103515245 + 12345;
        std::string parameter = i == 0 ? "" : "&";
        parameter += names[i % std::size(names)];
        parameter += i < std::size(names) ? "=" : std::to_string(i / std::size(names)) + "=";
        for (std::size_t k = 0; k < 4 + (random >> 16) % 28; ++k) {
            parameter += digits[(random >> k % 24) % digits.size()];
        }
        if (url.size() + parameter.size() > size) {
            return url;
        }
        url += parameter;
    }
}

void Parse(benchmark::State& state) {
    const std::string url = MakeUrl(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        UrlParser parser;
        if (parser.Parse(url.c_str()).IsFailed()) {
            state.SkipWithError("refused");
            break;
        }
        benchmark::DoNotOptimize(parser);
    }
}

/// Builds the expression and matches it, as a parser without a scan of its own would. Splits no parameters.
void Expression(benchmark::State& state) {
    const std::string url = MakeUrl(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        const std::regex expression(R"(^(([^\:/?#]+)\:)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?)");
        std::smatch match;
        if (!std::regex_match(url, match, expression)) {
            state.SkipWithError("refused");
            break;
        }
        benchmark::DoNotOptimize(match);
    }
}

void Uriparser(benchmark::State& state) {
    const std::string url = MakeUrl(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        UriUriA uri;
        const char* errorPosition = nullptr;
        if (uriParseSingleUriExA(&uri, url.data(), url.data() + url.size(), &errorPosition) != URI_SUCCESS) {
            state.SkipWithError("refused");
            break;
        }
        UriQueryListA* list = nullptr;
        int count = 0;
        const int result = uriDissectQueryMallocA(&list, &count, uri.query.first, uri.query.afterLast);
        benchmark::DoNotOptimize(list);
        if (result == URI_SUCCESS) {
            uriFreeQueryListA(list);
        }
        uriFreeUriMembersA(&uri);
        if (result != URI_SUCCESS) {
            state.SkipWithError("query refused");
            break;
        }
    }
}

const std::string kLinks[] = {
    "velm://connect/eu.play.velm.example:443/session/start?title=TITLE-1&ticket=abc.def~0123456789",
    "velm://connect/eu.play.velm.example@evil.test/session?title=TITLE-1&ticket=abc.def~0123456789",
};

/// A link that is accepted and one that is not.
void Read(benchmark::State& state) {
    for (auto _ : state) {
        for (const std::string& link : kLinks) {
            std::string url = "https";
            std::string title;
            std::string ticket;
            benchmark::DoNotOptimize(UrlSchemeUtil::read(link, url, title, ticket));
        }
    }
}

/// What reading the same links takes with the standard library: the expressions of the links, and for the one
/// that matches those of the services.
void ReadByExpressions(benchmark::State& state) {
    const auto expressionOf = [](std::string_view scrambled) { return std::regex(Unscramble(scrambled)); };
    for (auto _ : state) {
        for (const std::string& link : kLinks) {
            std::vector<std::regex> expressions;
            for (const LinkPattern& pattern : kLinkPatterns) {
                expressions.push_back(expressionOf(pattern.scrambled));
            }
            std::smatch match;
            if (!std::regex_match(link, match, expressions[0])) {
                benchmark::DoNotOptimize(std::regex_match(link, match, expressions[1]) ||
                                         std::regex_match(link, match, expressions[2]));
                continue;
            }
            const std::string url = "https://" + match.str(1);
            int matches = 0;
            for (const std::string_view pattern : kServicePatterns) {
                matches += std::regex_match(url, expressionOf(pattern)) ? 1 : 0;
            }
            benchmark::DoNotOptimize(matches);
        }
    }
}

BENCHMARK(Parse)->Arg(60)->Arg(200)->Arg(2000);
BENCHMARK(Expression)->Arg(60)->Arg(200)->Arg(2000);
BENCHMARK(Uriparser)->Arg(60)->Arg(200)->Arg(2000);
BENCHMARK(Read);
BENCHMARK(ReadByExpressions);

}  // namespace
}  // namespace velm::bench

int main(int argc, char** argv) {
    return velm::bench::RunAndCompare(argc, argv,
                                      {
                                          {"Parse/60", "Expression/60", 250.0},
                                          {"Parse/200", "Expression/200", 100.0},
                                          {"Parse/2000", "Expression/2000", 12.0},
                                          {"Parse/60", "Uriparser/60", 1.3},
                                          {"Parse/200", "Uriparser/200", 1.8},
                                          {"Parse/2000", "Uriparser/2000", 1.05},
                                          {"Read", "ReadByExpressions", 0.8},
                                      });
}
