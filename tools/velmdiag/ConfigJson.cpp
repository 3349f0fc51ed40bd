#include <chrono>
#include <filesystem>
#include <iostream>
#include <memory>
#include <system_error>

#include "Command.h"
#include "ConfigCommand.h"
#include "Help.h"
#include "InputFile.h"
#include "JsonSyntax.h"
#include "Path.h"
#include "Report.h"
#include "velm/JsonConfigReader.h"
#include "velm/platform/CommandLine.h"

namespace velmdiag {
namespace {

constexpr std::size_t kLargestJsonFile = std::size_t{1} << 30;

struct JsonOptions {
    std::string file;
    bool info = false;
    bool json = false;
};

struct Kind {
    std::string name;
    std::size_t members;
};

Kind KindOf(const picojson::value& value) {
    if (value.is<picojson::object>()) {
        return {"object", value.get<picojson::object>().size()};
    }
    if (value.is<picojson::array>()) {
        return {"array", value.get<picojson::array>().size()};
    }
    if (value.is<std::string>()) {
        return {"string", 0};
    }
    if (value.is<double>()) {
        return {"number", 0};
    }
    return {value.is<bool>() ? "boolean" : "null", 0};
}

/// Loads the document into the library's reader, from the file itself if that can be read twice.
void LoadDocument(const std::string& path, const std::string& text, velm::JsonConfigReader& reader) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(PathOf(path), ignored)) {
        reader.Read(text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text);
        return;
    }
    const std::string name = velm::platform::NarrowFileName(path);
    if (name.empty()) {
        throw Failure{path + ": cannot be represented in the ANSI code page of this system"};
    }
    if (reader.ReadFile(name) != 0) {
        throw Failure{path + ": cannot be read"};
    }
}

void PrintJsonReport(const JsonOptions& options, const std::string& text) {
    using Clock = std::chrono::steady_clock;
    velm::JsonConfigReader reader;
    picojson::value value;
    std::string error;
    const auto start = Clock::now();
    LoadDocument(options.file, text, reader);
    const auto read = Clock::now();
    if (!reader.getJsonValue(value, error)) {
        throw Failure{options.file + ": is valid JSON, but the library cannot parse it"};
    }
    const auto parsed = Clock::now();
    const Kind kind = KindOf(value);
    Report report;
    report.Add("file", options.file);
    report.Add("kind", kind.name);
    report.Add("members", static_cast<long long>(kind.members));
    report.Add("reading", std::chrono::duration<double>(read - start).count(), "s");
    report.Add("parsing", std::chrono::duration<double>(parsed - read).count(), "s");
    if (options.json) {
        report.Add("value", std::move(value), "");
    }
    report.Print(options.json);
}

int RunJson(const JsonOptions& options) {
    const std::string text = ReadWholeFile(options.file, kLargestJsonFile);
    try {
        CheckJson(text);
    } catch (const JsonSyntaxError& error) {
        throw Failure{options.file + ": " + error.what()};
    }
    if (options.info || options.json) {
        PrintJsonReport(options, text);
    } else {
        std::cout << FormatJson(text, velm::platform::OutputIsTerminal());
    }
    return 0;
}

}  // namespace

void AddConfigJson(CLI::App& config, int& exitStatus) {
    const auto options = std::make_shared<JsonOptions>();
    CLI::App* const command = config.add_subcommand("json", "Checks and prints a JSON file");
    Explain(
        command,
        "Checks a JSON file strictly (RFC 8259) and prints it, indented. Strings and numbers stay as "
        "written, except that on a terminal, invisible and control characters become \\u escapes. With "
        "--info or --json, the library parses the file, too. An error message gives the line and the column, "
        "counted in characters.",
        "velmdiag config json settings.json");
    command->add_option("FILE", options->file, "the JSON file")->type_name(kFileType)->required();
    command->add_flag("--info", options->info,
                      "print what the file is and how long the library takes to read it");
    command->add_flag("--json", options->json, "print one JSON object, with the document in \"value\"");
    command->callback([options, &exitStatus] { exitStatus = RunJson(*options); });
}

}  // namespace velmdiag
