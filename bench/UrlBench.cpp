// UrlParser::Parse, including parameters, against the regular expression of RFC 3986 in std::regex, against
// uriparser and against libcurl.
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <map>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "Families.h"
#include "velm/UrlParser.h"

#ifdef VELM_BENCH_URIPARSER
#include <uriparser/Uri.h>
#endif
#ifdef VELM_BENCH_CURL
#include <curl/curl.h>
#endif

namespace velm::bench {
namespace {

/// A URL of `size` bytes or a few less, with unsorted names and values of 4 to 31 characters.
std::string MakeUrl(std::size_t size) {
    static const char* const names[] = {"title",  "ticket", "region", "codec",  "bitrate", "width",
                                        "height", "fps",    "audio",  "locale", "session", "client"};
    const std::string digits = "0123456789abcdef";
    std::string url = std::string("https://play.velm.example/session?").substr(0, size);
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

/// The names of the parameters in MakeDenseUrl, unsorted and all different.
std::string DenseName(unsigned int number) {
    char name[8];
    std::snprintf(name, sizeof name, "%05x", number * 40503 & 0x1FFFF);
    return name;
}

/// A URL of about `size` bytes that consists of parameters of 8 bytes each.
std::string MakeDenseUrl(std::size_t size) {
    std::string url = "?";
    for (unsigned int i = 0; url.size() < size; ++i) {
        url += (i == 0 ? "" : "&") + DenseName(i) + "=1";
    }
    return url;
}

std::size_t BatchFor(std::size_t size) {
    return size <= 2000 ? 16 : 1;
}

Contender Ours(const std::string& url) {
    return Repeat(
        "UrlParser",
        [url] {
            UrlParser parser;
            Keep(parser.Parse(url.c_str()));
            Keep(&parser);
        },
        BatchFor(url.size()));
}

/// Compiles the expression and matches it, as a parser without its own scanner would. Splits no parameters.
Contender Expression(const std::string& url) {
    return Repeat("std::regex compiled per URL, no parameters", [url] {
        const std::regex expression(R"(^(([^\:/?#]+)\:)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?)");
        std::smatch match;
        Keep(std::regex_match(url, match, expression));
        Keep(&match);
    });
}

Peer Uriparser(const std::string& url, double required) {
    const std::string name = "uriparser, with parameters";
#ifdef VELM_BENCH_URIPARSER
    return {Repeat(
                name,
                [url] {
                    UriUriA uri;
                    const char* errorPosition = nullptr;
                    if (uriParseSingleUriExA(&uri, url.data(), url.data() + url.size(), &errorPosition) !=
                        URI_SUCCESS) {
                        return;
                    }
                    UriQueryListA* list = nullptr;
                    int count = 0;
                    if (uri.query.first != nullptr &&
                        uriDissectQueryMallocA(&list, &count, uri.query.first, uri.query.afterLast) ==
                            URI_SUCCESS) {
                        Keep(list);
                        uriFreeQueryListA(list);
                    }
                    uriFreeUriMembersA(&uri);
                },
                BatchFor(url.size())),
            required};
#else
    (void)url;
    return Missing(name, "liburiparser-dev", required);
#endif
}

Peer Curl(const std::string& url, double required) {
    const std::string name = "libcurl, no parameters";
#ifdef VELM_BENCH_CURL
    return {Repeat(
                name,
                [url] {
                    CURLU* const handle = curl_url();
                    Keep(curl_url_set(handle, CURLUPART_URL, url.c_str(), 0));
                    for (const CURLUPart part :
                         {CURLUPART_SCHEME, CURLUPART_HOST, CURLUPART_PATH, CURLUPART_QUERY}) {
                        char* text = nullptr;
                        Keep(curl_url_get(handle, part, &text, 0));
                        curl_free(text);
                    }
                    curl_url_cleanup(handle);
                },
                BatchFor(url.size())),
            required};
#else
    (void)url;
    return Missing(name, "libcurl4-openssl-dev", required);
#endif
}

constexpr const char* kSortedMap = "a std::map made from sorted input";

/// Builds the map of the URL's parameters from sorted input.
Peer MapOfSorted(const std::string& url) {
    UrlParser parser;
    parser.Parse(url.c_str());
    const std::map<std::string, std::string> parameters = parser.ParamMap();
    const std::vector<std::pair<std::string, std::string>> input(parameters.begin(), parameters.end());
    return LimitOf(Repeat(
        kSortedMap,
        [input] {
            const std::map<std::string, std::string> map(input.begin(), input.end());
            Keep(&map);
        },
        BatchFor(url.size())));
}

void MeasureManyParameters(Suite& suite) {
    const unsigned int count = suite.IsShort() ? 1000 : 125'000;
    const std::string url = MakeDenseUrl(8 * std::size_t{count});
    suite.Compare("UrlParser", "Parse, 125,000 parameters in 1 MB", Ours(url),
                  {Uriparser(url, 0), MapOfSorted(url)});
    const std::string curve = "UrlParser: Parse, a parameter in 8 bytes";
    suite.MeasureCurve(
        curve, "bytes of the URL", Growth::kWithSize, {1e3, 1e4, 1e5, 1e6},
        [](double size) -> std::vector<Contender> {
            const std::string grown = MakeDenseUrl(static_cast<std::size_t>(size));
            return {Ours(grown), MapOfSorted(grown).contender};
        },
        1e4);
    suite.RequireGrowth(curve, "UrlParser", 1e3, 1e6, 3, kSortedMap);
}

}  // namespace

void MeasureUrls(Suite& suite) {
    const struct {
        std::size_t size;
        double expression;
        double uriparser;
        double curl;
    } rows[] = {{60, 5.0, 1.0, 0}, {200, 5.0, 1.0, 0}, {2000, 5.0, 1.0, 0}};
    for (const auto& row : rows) {
        const std::string url = MakeUrl(row.size);
        suite.Compare(
            "UrlParser", "Parse, " + std::to_string(row.size) + " bytes", Ours(url),
            {{Expression(url), row.expression}, Uriparser(url, row.uriparser), Curl(url, row.curl)});
    }
    MeasureManyParameters(suite);
    const std::string curve = "UrlParser: Parse";
    suite.MeasureCurve(
        curve, "bytes of the URL", Growth::kWithSize, {10, 100, 1e3, 1e4, 1e5, 1e6},
        [](double size) -> std::vector<Contender> {
            const std::string url = MakeUrl(static_cast<std::size_t>(size));
            std::vector<Contender> contenders{Ours(url), MapOfSorted(url).contender};
            const Peer uriparser = Uriparser(url, 0);
            if (uriparser.contender.run != nullptr) {
                contenders.push_back(uriparser.contender);
            }
            return contenders;
        },
        1e4);
    suite.RequireGrowth(curve, "UrlParser", 1e3, 1e6, 3, kSortedMap);
}

}  // namespace velm::bench
