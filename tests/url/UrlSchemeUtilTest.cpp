#include "velm/UrlSchemeUtil.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

namespace velm {
namespace {

using namespace std::string_literals;

/// The outputs for a link, which begin as `url`, "t" and "k".
std::string Read(const std::string& link, std::string url) {
    std::string title = "t";
    std::string ticket = "k";
    const ErrorCode result = UrlSchemeUtil::read(link, url, title, ticket);
    EXPECT_EQ(result, result.IsFailed() ? VELM_ERROR_UTIL_INVALID_PARAM : 0U);
    return (result.IsFailed() ? "refused, " : "") + url + ' ' + title + ' ' + ticket;
}

const std::string kTail = "?title=TITLE-1_&ticket=a.b~c=_-9";

TEST(UrlSchemeUtil, LinkFormsAreReadIntoAddressTitleAndTicket) {
    const struct {
        std::string link, url, outputs;
    } cases[] = {{"velm://connect/play.velm.example" + kTail, "https://old/x",
                  "https://play.velm.example TITLE-1_ a.b~c=_-9"},
                 {"velm://connect/localhost:8080/p" + kTail, "http://old/x",
                  "http://localhost:8080/p TITLE-1_ a.b~c=_-9"},
                 {"velm:eu-west-1.edge.velm.example:443/%2f&x=1;T;K",
                  "https:", "https://eu-west-1.edge.velm.example:443/%2f&x=1 T K"},
                 {"velm:127.0.0.1/;T;=", "http:", "http://127.0.0.1/ T ="},
                 {"velm://resume?title=T&ticket=K", "https://a--b.stage.velm.example:99999/",
                  "https://a--b.stage.velm.example:99999/ T K"},
                 {"velm:evil.test;T;K", "https", "refused, https://evil.test T K"}};
    for (const auto& expected : cases) {
        EXPECT_EQ(Read(expected.link, expected.url), expected.outputs) << expected.link;
    }
}

TEST(UrlSchemeUtil, RefusedLinksLeaveTheOutputs) {
    const std::string connect = "velm://connect/play.velm.example/";
    const std::string good = connect + kTail;
    for (const std::string& link :
         {good + '\n', good + '\0', good + "&more=1", good + "#f", ' ' + good, 'x' + good,
          "VELM" + good.substr(4), connect + "?title=&ticket=K",
          connect + "?title=T&ticket=", connect + "?title=a%41&ticket=K", connect + "?ticket=K&title=T",
          connect + "velm:x" + kTail, "velm:velm:play.velm.example;T;K"s, "velm:play.velm.example/a;b;T;K"s,
          "velm:play.velm.example;T;K;"s, "velm:play.velm.example;;K"s, "velm:;T;K"s,
          "velm://resume/?title=T&ticket=K"s, "velm://resume?title=T&ticket=K\r\n"s}) {
        EXPECT_EQ(Read(link, "https://play.velm.example"), "refused, https://play.velm.example t k") << link;
    }
    for (const std::string& url : {"HTTPS://x"s, "http"s, ""s, "http\0"s}) {
        EXPECT_EQ(Read(good, url), "refused, " + url + " t k");
    }
}

TEST(UrlSchemeUtil, OutputsMayShareTheLinksString) {
    std::string link = "velm:play.velm.example;LONGER-THAN-THE-BODY-BEFORE-IT;K";
    std::string url = "https";
    std::string other;
    EXPECT_EQ(UrlSchemeUtil::read(link, url, link, other), 0U);
    EXPECT_EQ(url + ' ' + link + ' ' + other, "https://play.velm.example LONGER-THAN-THE-BODY-BEFORE-IT K");
}

TEST(UrlSchemeUtil, ServiceAddressesAndNoOthersAreAccepted) {
    const std::string play = "https://play.velm.example";
    const std::string stage = "stage.velm.example";
    const std::string edge = ".edge.velm.example";
    const std::string local = "http://localhost";
    const std::string loopback = "http://127.0.0.1";
    for (const std::string& url : {play, play + '/', play + ":443/a/b-c_d.e~f", local, local + ":8080//",
                                   loopback + ":1", "https://eu.west.play.velm.example/!$&'()*+,=%7E%aF"s,
                                   "https://" + stage + ":1/", "https://x." + stage + ":65535",
                                   "https://eu-west-1" + edge, "https://us-e-007" + edge + ":443/x"}) {
        EXPECT_EQ(UrlSchemeUtil::checkPavix(url), 0U) << url;
    }
    const auto expectRefused = [](const std::string& url) {
        EXPECT_EQ(UrlSchemeUtil::checkPavix(url), VELM_ERROR_UTIL_INVALID_PARAM) << url;
    };
    for (const std::string& beginning :
         {""s, "//"s, "http://"s, "ftp://"s, "HTTPS://"s, " https://"s, "https:\\\\"s, "https://user@"s,
          "https://user:pass@"s, "https://evil"s, "https://evil-"s, "https://."s, "https://a.."s,
          "https://-a."s, "https://a-."s, "https://a_b."s, "https://evil.test/https://"s,
          "https://evil.test/."s}) {
        expectRefused(beginning + "play.velm.example/");
    }
    for (const std::string& end :
         {"@evil.test/"s, ".evil.test/"s, "./"s,  "."s,     ":443443/"s, ":/"s,        ":0443"s,
          ":444"s,        "\n"s,          "\0"s,  "\0.b"s,  "?q=1"s,     " http://a"s, "/ "s,
          "/a\tb"s,       "/\n"s,         "/\r"s, "/a\0b"s, "/a\\b"s,    "/%"s,        "/%4"s,
          "/%4g"s,        "/%%41"s,       "/;x"s, "/a:b"s,  "/?q=1"s,    "/#f"s,       "/\xC3\xA4"s}) {
        expectRefused(play + end);
    }
    for (const std::string& url :
         {""s, "https://Play.velm.example/"s, "https://play.velm.EXAMPLE"s, "https://playxvelm.example"s,
          "https://edge.velm.example"s, "https://eu-west-1" + edge + ":8443", "https://x.eu-west-1" + edge,
          "https://eur-west-1" + edge, "https://eu-west-" + edge, "https://eu-west1" + edge,
          "https://eu-1" + edge, "https://" + stage + ":123456", "http://" + stage, "https://localhost"s,
          "http://a.localhost"s, local + ":123456", "http://127.0.0.2"s}) {
        expectRefused(url);
    }
}

TEST(UrlSchemeUtil, NoPlainPatternIsInTheLibrary) {
    std::ifstream file(VELM_TEST_LIBRARY, std::ios::binary);
    const std::string library{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    ASSERT_NE(library.find("VELM_ERROR_UTIL_INVALID_PARAM"), library.npos) << "no library to search";
    for (const char* const plain :
         {"velm://", "velm:(", "connect/", "title=", "ticket=", "play\\.", "stage\\.", "edge\\.",
          "velm\\.example", "localhost", "127\\.", "a-z0-9"}) {
        EXPECT_EQ(library.find(plain), library.npos) << plain;
    }
}

}  // namespace
}  // namespace velm
