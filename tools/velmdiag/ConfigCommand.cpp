#include <charconv>
#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include "Command.h"
#include "Help.h"
#include "InputFile.h"
#include "JsonSyntax.h"
#include "Report.h"
#include "velm/core/FileReader.h"
#include "velm/EnvConfigReader.h"
#include "velm/IniConfigReader.h"
#include "velm/JsonConfigReader.h"
#include "velm/platform/CommandLine.h"
#include "velm/WindowsUtil.h"

namespace velmdiag {
namespace {

constexpr int kNotFound = 1;
constexpr std::size_t kLargestJsonFile = std::size_t{1} << 30;

struct ConfigOptions {
    std::string file;
    std::string section;
    std::string key;
    std::optional<std::string> defaultText;
    bool number = false;
    std::string variable;
    bool json = false;
};

/// A name as the readers of the environment and of INI files take it.
std::string ToOem(const std::string& utf8) {
    std::string oem;
    std::string back;
    if (velm::WindowsUtil::GetOemcpStringFromUtf8String(utf8, oem).IsFailed() ||
        velm::WindowsUtil::GetUtf8StringFromOemcpString(oem, back).IsFailed() || back != utf8) {
        throw Failure{utf8 + ": cannot be written in the OEM code page of this system"};
    }
    return oem;
}

/// The readers do not say why a file could not be read.
void CheckReadable(const std::string& path) {
    velm::FileReader file;
    CheckFile(path, file.Open(path.c_str()));
}

/// The whole path of a file: Windows would look for a bare name in its own folder.
std::string WholePath(const std::string& utf8) {
    const std::u8string path =
        std::filesystem::absolute(std::u8string(utf8.begin(), utf8.end())).make_preferred().u8string();
    return {path.begin(), path.end()};
}

/// A setting and whether it is there, which the readers do not say: it is when it does not depend on the
/// default.
template <typename Value>
struct Setting {
    Value value;
    bool found;
};

template <typename Value>
Setting<Value> ReadIni(const ConfigOptions& options, const Value& defaultValue, const Value& otherDefault) {
    velm::IniConfigReader reader;
    const std::string file = ToOem(WholePath(options.file));
    const std::string section = ToOem(options.section);
    const std::string key = ToOem(options.key);
    Value value{};
    Value other{};
    reader.GetIfOk(file, section, key, otherDefault, other);
    reader.GetIfOk(file, section, key, defaultValue, value);
    return {value, value == other};
}

int ToNumber(const std::string& text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    if (const auto result = std::from_chars(text.data(), end, number);
        result.ec != std::errc() || result.ptr != end) {
        throw Failure{"--default: not a number: " + text, kWrongUsage};
    }
    return number;
}

int RunIni(const ConfigOptions& options) {
    const int defaultNumber = options.number ? ToNumber(options.defaultText.value_or("0")) : 0;
    CheckReadable(options.file);
    Report report;
    report.Add("file", options.file);
    report.Add("section", options.section);
    report.Add("key", options.key);
    bool found = false;
    if (options.number) {
        const auto setting = ReadIni(options, defaultNumber, defaultNumber == 0 ? 1 : 0);
        report.Add("value", static_cast<long long>(setting.value));
        found = setting.found;
    } else {
        const std::string defaultText = ToOem(options.defaultText.value_or(""));
        const auto setting = ReadIni(options, defaultText, defaultText + "x");
        report.Add("value", setting.value);
        found = setting.found;
    }
    report.Add("found", found);
    if (!found && !options.defaultText) {
        throw Failure{options.file + ": no value for key \"" + options.key + "\" in section \"" +
                      options.section + "\""};
    }
    report.Print(options.json);
    return found ? 0 : kNotFound;
}

int RunEnv(const ConfigOptions& options) {
    velm::EnvConfigReader reader;
    const std::string name = ToOem(options.variable);
    std::string value = "1";
    std::string other = "2";
    reader.GetIfOk(name, value);
    reader.GetIfOk(name, other);
    if (value != other) {
        throw Failure{options.variable + ": not set"};
    }
    Report report;
    report.Add("name", options.variable);
    report.Add("value", value);
    report.Print(options.json);
    return 0;
}

/// Before the library's parser, which accepts more than JSON and joins the lines.
void CheckJsonFile(const std::string& path) {
    try {
        CheckJson(ReadWholeFile(path, kLargestJsonFile));
    } catch (const JsonSyntaxError& error) {
        throw Failure{path + ": " + error.what()};
    }
}

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

int RunJson(const ConfigOptions& options) {
    using Clock = std::chrono::steady_clock;
    CheckJsonFile(options.file);
    const std::string name = velm::platform::NarrowFileName(options.file);
    if (name.empty()) {
        throw Failure{options.file + ": cannot be written in the ANSI code page of this system"};
    }
    velm::JsonConfigReader reader;
    const auto start = Clock::now();
    if (reader.ReadFile(name) != 0) {
        throw Failure{options.file + ": cannot be read"};
    }
    const auto read = Clock::now();
    picojson::value value;
    std::string error;
    if (!reader.getJsonValue(value, error)) {
        throw Failure{options.file + ": is JSON, but the library does not parse it"};
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
    return 0;
}

}  // namespace

void AddConfigCommand(CLI::App& app, int& exitStatus) {
    const auto options = std::make_shared<ConfigOptions>();
    CLI::App* const config =
        app.add_subcommand("config", "Reads settings from INI files, the environment and JSON");
    config->require_subcommand(1);

    CLI::App* const ini = config->add_subcommand("ini", "Reads one value of an INI file");
    Explain(ini,
            "Prints one value of an INI file, or the default. The exit status is 0 when the file has a "
            "value and 1 when it has none.",
            "velmdiag config ini client.ini network port --int --default 443");
    ini->add_option("FILE", options->file, "the INI file")->required();
    ini->add_option("SECTION", options->section, "its section, without brackets")->required();
    ini->add_option("KEY", options->key, "the key in it")->required();
    ini->add_option("--default", options->defaultText, "print this when the file has no value");
    ini->add_flag("--int", options->number, "read the value as a number");
    ini->callback([options, &exitStatus] { exitStatus = RunIni(*options); });

    CLI::App* const env = config->add_subcommand("env", "Reads an environment variable");
    Explain(env,
            "Prints an environment variable. The exit status is 0 when it is set, also when it is "
            "empty, and 1 when it is not.",
            "velmdiag config env PATH");
    env->add_option("NAME", options->variable, "the variable")->required();
    env->callback([options, &exitStatus] { exitStatus = RunEnv(*options); });

    CLI::App* const json = config->add_subcommand("json", "Reads a JSON file");
    Explain(json,
            "Checks a JSON file strictly (RFC 8259), parses it with the library and says what it is; with "
            "--json, prints it too. An error names the line and the column, in characters.",
            "velmdiag config json settings.json --json");
    json->add_option("FILE", options->file, "the JSON file")->required();
    json->callback([options, &exitStatus] { exitStatus = RunJson(*options); });

    for (CLI::App* const command : {ini, env, json}) {
        command->add_flag("--json", options->json, "print one JSON object");
    }
}

}  // namespace velmdiag
