#include <memory>
#include <string>

#include "Command.h"
#include "Help.h"
#include "Report.h"
#include "velm/UrlParser.h"

namespace velmdiag {
namespace {

struct UrlOptions {
    std::string url;
    bool json = false;
};

int RunUrl(const UrlOptions& options) {
    velm::UrlParser parser;
    const velm::ErrorCode result = parser.Parse(options.url.c_str());
    if (result.IsFailed()) {
        throw Failure{options.url + ": cannot be parsed as a URL: " + Describe(result)};
    }
    picojson::object parameters;
    std::string text;
    for (const auto& [name, value] : parser.ParamMap()) {
        parameters[name] = picojson::value(value);
        text += (text.empty() ? "" : "&") + name + "=" + value;  // neither contains a separator
    }

    Report report;
    report.Add("url", parser.Url());
    report.Add("scheme", parser.Scheme());
    report.Add("authority", parser.Authority());
    report.Add("path", parser.Path());
    report.Add("query", parser.Query());
    report.Add("fragment", parser.Fragment());
    report.Add("parameters", picojson::value(parameters), text);
    report.Print(options.json);
    return 0;
}

}  // namespace

void AddUrlCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<UrlOptions>();
    CLI::App* const command = app.add_subcommand("url", "Splits a URL into its components and parameters");
    Explain(command,
            "Splits a URL into scheme, authority, path, query and fragment, and its query into "
            "parameters, sorted by name. Nothing is decoded.",
            "velmdiag url 'https://play.velm.example/a?b=1&c=2#d' --json");
    command->add_option("URL", options->url, "the URL")->required();
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunUrl(*options); });
}

}  // namespace velmdiag
