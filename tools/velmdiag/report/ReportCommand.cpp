#include <chrono>
#include <ctime>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "AdapterReport.h"
#include "Command.h"
#include "Document.h"
#include "Facts.h"
#include "Help.h"
#include "OutputFile.h"
#include "Progress.h"
#include "Redaction.h"
#include "SelfTests.h"
#include "velm/platform/CommandLine.h"

namespace velmdiag {
namespace {

struct ReportOptions {
    std::optional<std::string> output;
    std::optional<std::string> rules;
    bool full = false;
    bool json = false;
};

using ReportFormat = std::string (*)(const report::Document&);

std::string PlainText(const report::Document& document) {
    return report::TextOf(document, false);
}

/// The format for a file's extension, ignoring case.
ReportFormat FormatOf(const std::string& file) {
    const std::size_t dot = file.find_last_of("./\\");
    std::string extension = dot != std::string::npos && file[dot] == '.' ? file.substr(dot) : "";
    for (char& c : extension) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    constexpr struct {
        const char* extension;
        ReportFormat format;
    } kFormats[] = {{".html", report::HtmlOf}, {".json", report::JsonOf}, {".txt", PlainText}};
    for (const auto& known : kFormats) {
        if (extension == known.extension) {
            return known.format;
        }
    }
    throw Failure{"--out " + file + ": the name must end in .html, .json or .txt, which chooses the format",
                  kWrongUsage};
}

std::string NowInUtc() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    char text[32] = "";
    if (const std::tm* const utc = std::gmtime(&now)) {
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M UTC", utc);
    }
    return text;
}

std::vector<report::SelfTest> RunSelfTestsWithProgress() {
    Progress progress;
    return report::RunSelfTests([&](const std::string& title, std::size_t number) {
        progress.Show(std::to_string(number) + "  " + title);
    });
}

report::Document MakeDocument(const ReportOptions& options) {
    report::Document document;
    document.created = NowInUtc();
    document.version = VELM_VERSION;
    document.redacted = !options.full;
    document.tests = RunSelfTestsWithProgress();
    report::AddFacts(document, options.rules);
    if (document.redacted) {
        report::Transform(document, report::Redaction(report::UserOfThisProcess()));
    }
    return document;
}

/// Prints the verdict and what did not pass, for a report that goes to a file.
void PrintSummary(const report::Document& document, const std::string& file) {
    Report summary;
    summary.Add("report", file);
    summary.Add("verdict", report::VerdictOf(document));
    for (const report::SelfTest& test : document.tests) {
        if (test.outcome != report::Outcome::passed) {
            summary.Add(test.key, std::string(report::NameOf(test.outcome)) + ": " + test.finding);
        }
    }
    summary.Print(false);
}

int RunReport(const ReportOptions& options) {
    const ReportFormat format = options.output ? FormatOf(*options.output) : nullptr;
    if (options.rules) {
        CheckRuleFile(*options.rules);
    }
    std::unique_ptr<OutputFile> file;
    if (options.output) {
        file = std::make_unique<OutputFile>(*options.output);  // fails before the tests run, not after
    }
    const report::Document document = MakeDocument(options);
    if (file != nullptr) {
        const std::string text = format(document);
        file->Write(text.data(), text.size());
        file->Commit();
    }
    if (options.json) {
        std::cout << report::JsonOf(document);
    } else if (options.output) {
        PrintSummary(document, *options.output);
    } else {
        std::cout << report::TextOf(document, velm::platform::OutputTakesColors());
    }
    return report::ExitStatusOf(document);
}

}  // namespace

void AddReportCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<ReportOptions>();
    CLI::App* const command =
        app.add_subcommand("report", "Tests every family and describes the system, for support");
    Explain(
        command,
        "Runs a self-test of every family and adds what support asks for: system, displays, adapters, clock, "
        "libraries, and the settings that change how programs run. The user's name and home folder are left "
        "out. It takes some seconds and opens a window for the device.\nThe exit status is 0 if all tests "
        "passed, 1 if one failed or the rules refuse an adapter, 2 if none failed but one could not run "
        "here, such as the device test without Direct3D 9. The report is written in every case.",
        "velmdiag report --out report.html");
    command
        ->add_option("--out", options->output, "the file: .html, .json or .txt; standard output if not given")
        ->type_name(kFileType);
    command->add_option("--rules", options->rules, "check the adapters against this rule file")
        ->type_name(kFileType);
    command->add_flag("--full", options->full, "keep the user's name and home folder");
    command->add_flag("--json", options->json,
                      "print the report as one JSON object; times are in microseconds");
    command->callback([options, &exitStatus] { exitStatus = RunReport(*options); });
}

}  // namespace velmdiag
