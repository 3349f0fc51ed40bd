#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "Command.h"
#include "Help.h"
#include "Report.h"
#include "url/Scramble.h"
#include "velm/UrlSchemeUtil.h"

namespace velmdiag {
namespace {

struct LinkOptions {
    std::optional<std::string> link;
    std::optional<std::string> pattern;
    std::string scheme = "https";
    std::optional<std::string> address;
    bool json = false;
};

int ScramblePattern(const std::string& pattern, bool json) {
    const std::string scrambled = velm::Unscramble(pattern);  // scrambling is its own inverse
    if (json) {
        Report report;
        report.Add("scrambled", scrambled);
        report.Print(true);
    } else {
        std::cout << scrambled << '\n';
    }
    return 0;
}

int RunLink(const LinkOptions& options) {
    if (options.pattern) {
        return ScramblePattern(*options.pattern, options.json);
    }
    if (!options.link) {
        throw CLI::RequiredError("LINK");
    }
    std::string address = options.address.value_or(options.scheme + ":");
    std::string title;
    std::string ticket;
    const velm::ErrorCode result = velm::UrlSchemeUtil::read(*options.link, address, title, ticket);
    const bool isRead = !title.empty();

    Report report;
    report.Add("link", *options.link);
    report.Add("accepted", !result.IsFailed());
    if (isRead) {
        report.Add("address", address);
        report.Add("title", title);
        report.Add("ticket", ticket);
    }
    report.Print(options.json);
    if (result.IsFailed()) {
        throw Failure{isRead ? address + ": the client does not follow this address (" + NameOf(result) + ')'
                             : *options.link + ": is not a link of the client (" + NameOf(result) + ')'};
    }
    return 0;
}

}  // namespace

void AddLinkCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<LinkOptions>();
    CLI::App* const command = app.add_subcommand("link", "Reads a link and checks where it leads");
    Explain(command,
            "Reads a link as the client does and checks the address that it leads to. The exit status "
            "is 0 if the client would follow it and 1 if not.\nWith --scramble, prints the form in which "
            "UrlSchemeUtil::checkDomain takes a pattern of your own.",
            "velmdiag link 'velm://connect/play.velm.example/a?title=T1&ticket=abc' --scheme https");
    CLI::Option* const link = command->add_option("LINK", options->link, "the link");
    command->add_option("--scramble", options->pattern, "scramble this pattern for checkDomain")
        ->excludes(link);
    CLI::Option* const scheme =
        command->add_option("--scheme", options->scheme, "scheme of the address that the link names")
            ->check(CLI::IsMember({"https", "http"}))
            ->capture_default_str();
    command->add_option("--address", options->address, "address that a resume link returns to")
        ->excludes(scheme);
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunLink(*options); });
}

}  // namespace velmdiag
