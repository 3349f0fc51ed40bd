#include "velm/UrlSchemeUtil.h"

#include <gtest/gtest.h>

namespace velm::url_scheme_util_test {

using namespace std::string_literals;

/// The outputs for a link; they start as `url`, "t" and "k".
std::string Read(const std::string& link, std::string url) {
    std::string title = "t", ticket = "k";
    const ErrorCode result = UrlSchemeUtil::read(link, url, title, ticket);
    return (result == 0U                              ? ""
            : result == VELM_ERROR_UTIL_INVALID_PARAM ? "rejected, "
                                                      : "? ") +
           url + ' ' + title + ' ' + ticket;
}

TEST(UrlSchemeUtil, ReadsAddressTitleAndTicket) {
    EXPECT_EQ(Read("velm://connect/localhost:1?title=T-_&ticket=.~=_-9", "http:"),
              "http://localhost:1 T-_ .~=_-9");
    EXPECT_EQ(Read("velm:play.velm.example/%2f&x=1;T;=", "https"), "https://play.velm.example/%2f&x=1 T =");
    EXPECT_EQ(Read("velm://resume?title=T&ticket=K", "http://127.0.0.1/"), "http://127.0.0.1/ T K");
    EXPECT_EQ(Read("velm:evil.test;T;K", "https"), "rejected, https://evil.test T K");
    std::string link = "velm:play.velm.example;LONGER-THAN-THE-BODY-BEFORE-IT;K", url = "https";
    EXPECT_EQ(UrlSchemeUtil::read(link, url, link, link), 0U);  // an output may be the link
    EXPECT_EQ(link, "K");
}

TEST(UrlSchemeUtil, RejectsMalformedLinks) {
    const std::string connect = "velm://connect/play.velm.example";
    const std::string good = connect + "?title=T&ticket=K";
    for (const std::string& link :
         {good + '\n', good + '\0', good + "&more=1", ' ' + good, "VELM" + good.substr(4), "velm:a_b;T;K"s,
          connect + "?title=&ticket=K", connect + "?title=T&ticket=", connect + "?title=a%41&ticket=K",
          connect + "?ticket=K&title=T", connect + "velm:x?title=T&ticket=K", "velm:velm:play;T;K"s,
          "velm://connect/title=T&ticket=K"s, "velm:play/a;b;T;K"s, "velm:play;T;K;"s, "velm:play;;K"s,
          "velm:;T;K"s, "velm://resume/?title=T&ticket=K"s, "velm://resumtitle=T&ticket=K"s}) {
        EXPECT_EQ(Read(link, "https://play.velm.example"), "rejected, https://play.velm.example t k") << link;
    }
    for (const std::string& url : {"HTTPS://x"s, "http"s, ""s, "http\0"s}) {
        EXPECT_EQ(Read(good, url), "rejected, " + url + " t k");
    }
}

TEST(UrlSchemeUtil, AcceptsServiceAddressesOnly) {
    const auto expectRejected = [](const std::string& url) {
        EXPECT_EQ(UrlSchemeUtil::checkPavix(url), VELM_ERROR_UTIL_INVALID_PARAM) << url;
    };
    for (std::string url :
         {"https://play.velm.example", "https://play.velm.example:443/a/b-c_d.e~f",
          "https://eu.play.velm.example/!$&'()*+,=%7E%aF", "https://stage.velm.example:1/",
          "https://x.stage.velm.example:65535", "https://eu-west-1.edge.velm.example",
          "https://us-e-007.edge.velm.example:443/x", "http://localhost:8080//", "http://127.0.0.1:1"}) {
        EXPECT_EQ(UrlSchemeUtil::checkPavix(url), 0U) << url;
        for (std::size_t dot = url.find('.'); dot < url.find_first_of(":/", 8); dot = url.find('.', dot)) {
            url[dot] = 'x';  // an unescaped dot would match it
            expectRejected(url);
            url[dot++] = '.';
        }
    }
    for (const std::string beginning :
         {"", "//", "http://", "ftp://", "HTTPS://", " https://", "https:\\\\", "https://user@",
          "https://u:p@", "https://evil", "https://evil-", "https://.", "https://a..", "https://-a.",
          "https://a-.", "https://a_b.", "https://evil.test/https://", "https://P"}) {
        expectRejected(beginning + "play.velm.example/");
    }
    for (const std::string& end :
         {"\0.b"s, "/a\0b"s, "@evil.test/"s, ".evil.test/"s, "./"s,   ":443443/"s, ":/"s,  ":0443"s,
          ":444"s, "\n"s,    "?q=1"s,        "/a\tb"s,       "/\r"s,  "/a\\b"s,    "/%"s,  "/%4"s,
          "/%4g"s, "/%%41"s, "/;x"s,         "/a:b"s,        "/a@b"s, "/?q=1"s,    "/#f"s, "/\xC3\xA4"s}) {
        expectRejected("https://play.velm.example" + end);
    }
    for (const std::string host :
         {"edge.velm.example", "x.eu-west-1.edge.velm.example", "eur-west-1.edge.velm.example",
          "eu-west-.edge.velm.example", "eu-west1.edge.velm.example", "eu-1.edge.velm.example", "localhost",
          "eu-west-1.edge.velm.example:8443", "stage.velm.example:123456", "a.localhost", ""}) {
        expectRejected("https://" + host);
    }
    expectRejected("http://stage.velm.example");
    expectRejected("http://a.localhost");
}

}  // namespace velm::url_scheme_util_test
