#include <charconv>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Command.h"
#include "ErrorTexts.h"
#include "Help.h"
#include "Report.h"
#include "velm/core/ErrorRegistry.h"

namespace velmdiag {
namespace {

/// A code as programs and logs show it: hexadecimal with 0x, decimal, or decimal as a signed number.
std::optional<unsigned int> ParseCode(std::string_view text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const std::string_view digits = isHex ? text.substr(2) : text;
    const char* const end = digits.data() + digits.size();
    long long number = 0;
    const auto [stop, error] = std::from_chars(digits.data(), end, number, isHex ? 16 : 10);
    const bool isCode = number >= -0x80000000LL && number <= 0xFFFFFFFFLL && !(isHex && number < 0);
    if (error != std::errc() || stop != end || !isCode) {
        return std::nullopt;
    }
    return static_cast<unsigned int>(number);
}

std::optional<unsigned int> FindByName(std::string_view name) {
    for (const ErrorText& text : GetErrorTexts()) {
        if (NameOf(text.code) == name) {
            return text.code;
        }
    }
    return std::nullopt;
}

Report ReportOfCode(unsigned int code) {
    const velm::ErrorCodeInfo* const info = velm::FindErrorCode(code);
    if (info == nullptr) {
        throw Failure{HexOf(code) + ": no such code is registered"};
    }
    const ErrorText* const text = FindErrorText(code);
    Report report;
    report.Add("code", picojson::value(static_cast<double>(code)),
               HexOf(code) + ", " + std::to_string(code) + ", " + std::to_string(static_cast<int>(code)));
    report.Add("name", info->name);
    report.Add("facility", info->facility);
    if (text != nullptr) {
        report.Add("meaning", text->meaning);
        report.Add("what_to_try", text->advice);
    }
    return report;
}

int RunError(const std::string& text, bool json) {
    if (!text.empty()) {
        const std::optional<unsigned int> named = FindByName(text);
        const std::optional<unsigned int> code = named ? named : ParseCode(text);
        if (!code) {
            throw Failure{text + ": is neither a code, such as 0x8149AC0A, nor the name of one", kWrongUsage};
        }
        ReportOfCode(*code).Print(json);
        return 0;
    }
    std::vector<Report> reports;
    for (const ErrorText& known : GetErrorTexts()) {
        reports.push_back(ReportOfCode(known.code));
    }
    Report::PrintList("error_codes", reports, json);
    return 0;
}

}  // namespace

void AddErrorCommand(CLI::App& app, int& exitStatus) {
    struct ErrorOptions {
        std::string code;
        bool json = false;
    };
    const auto options = std::make_shared<ErrorOptions>();
    CLI::App* const command = app.add_subcommand("error", "Explains an error code of the libraries");
    Explain(command,
            "Shows the name and the facility of a code, what it means and what to try. CODE is a number, "
            "decimal or hexadecimal with 0x, or a name. Without one, all codes are shown.",
            "velmdiag error 0x8149AC0A");
    command->add_option("CODE", options->code, "the code; all of them if not given");
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, &exitStatus] { exitStatus = RunError(options->code, options->json); });
}

}  // namespace velmdiag
