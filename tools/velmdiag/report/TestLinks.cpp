#include <algorithm>
#include <string>
#include <vector>

#include "Command.h"
#include "SelfTests.h"
#include "velm/core/Tick.h"
#include "velm/UrlParser.h"
#include "velm/UrlSchemeUtil.h"

namespace velmdiag::report {
namespace {

struct LinkCase {
    const char* what;
    std::string link;
    bool accepted;
};

std::vector<LinkCase> LinkCases() {
    return {
        {"a link to a game", "velm://connect/play.velm.example/game?title=Racer&ticket=a1.b2", true},
        {"the short form", "velm:play.velm.example/game;Racer;a1.b2", true},
        {"a look-alike host", "velm://connect/play.velm.example.evil.example/?title=T&ticket=t", false},
        {"a host behind a user name", "velm://connect/play.velm.example@evil.example/?title=T&ticket=t",
         false},
        {"a foreign host", "velm://connect/evil.example/play.velm.example/?title=T&ticket=t", false},
        {"a second line", "velm://connect/play.velm.example/\n?title=T&ticket=t", false},
        {"a foreign scheme", "http://play.velm.example/?title=T&ticket=t", false},
        {"a megabyte", "velm://connect/" + std::string(1 << 20, 'a') + "?title=T&ticket=t", false},
    };
}

/// Whether the client would follow the link. Also requires that the parts of a good link are read correctly.
bool IsFollowed(const LinkCase& at) {
    std::string address = "https:";
    std::string title;
    std::string ticket;
    const bool followed = !velm::UrlSchemeUtil::read(at.link, address, title, ticket).IsFailed();
    Require(!followed || !at.accepted ||
                (address == "https://play.velm.example/game" && title == "Racer" && ticket == "a1.b2"),
            std::string(at.what) + " was split incorrectly");
    return followed;
}

}  // namespace

std::string TestLinks(SelfTest& test) {
    int good = 0;
    int forged = 0;
    double longest = 0;
    for (const LinkCase& at : LinkCases()) {
        const unsigned long long start = velm::Tick::Get().GetCount();
        const bool followed = IsFollowed(at);
        longest = std::max(longest, SecondsSince(start) * 1000);
        Require(followed == at.accepted,
                std::string(at.what) + (followed ? " was accepted" : " was refused"));
        ++(at.accepted ? good : forged);
    }
    test.figures.Add("good_links_accepted", static_cast<long long>(good));
    test.figures.Add("forged_links_refused", static_cast<long long>(forged));
    AddTime(test.figures, "longest_call", longest * 1000);
    velm::UrlParser url;
    Require(!url.Parse("https://play.velm.example/a?lang=de#top").IsFailed() &&
                url.Authority() == std::string("play.velm.example") && url.Param("lang") == std::string("de"),
            "a URL was split incorrectly");
    return std::to_string(good) + " good links accepted, " + std::to_string(forged) +
           " forged ones refused; the longest call took " + Fixed(longest, 1) + " ms.";
}

}  // namespace velmdiag::report
