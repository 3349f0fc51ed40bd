#include <windows.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "Command.h"
#include "ConfigCommand.h"
#include "Help.h"
#include "InputFile.h"
#include "Path.h"
#include "Report.h"
#include "Text.h"
#include "velm/IniConfigReader.h"
#include "velm/WindowsUtil.h"

namespace velmdiag {
namespace {

constexpr std::size_t kLargestIniFile = std::size_t{1} << 20;
constexpr std::size_t kMaxNames = 2000;  // in a list: the system reads the whole file for each

struct IniOptions {
    std::string file;
    std::string section;
    std::string key;
    std::optional<std::string> defaultText;
    bool number = false;
    bool json = false;
};

/// The full path of a file; Windows would look for a bare name in the Windows folder.
std::string FullPath(const std::string& utf8) {
    const std::u8string path = std::filesystem::absolute(PathOf(utf8)).make_preferred().u8string();
    return {path.begin(), path.end()};
}

std::wstring Wide(const std::string& utf8) {
    std::wstring wide;
    if (velm::WindowsUtil::GetWstringFromUtf8String(utf8, wide).IsFailed()) {
        throw Failure{utf8 + ": cannot be converted to UTF-16"};
    }
    return wide;
}

/// A setting, and whether the file has it. The readers do not report that, but the value of a setting that
/// exists does not depend on the default.
template <typename Value>
struct Setting {
    Value value;
    bool found;
};

template <typename Value>
Setting<Value> ReadIni(const std::string& path, const std::string& section, const std::string& key,
                       const Value& defaultValue, const Value& otherDefault) {
    velm::IniConfigReader reader;
    const std::string oemFile = ToOem(FullPath(path));
    const std::string oemSection = ToOem(section);
    const std::string oemKey = ToOem(key);
    Value value{};
    Value other{};
    reader.GetIfOk(oemFile, oemSection, oemKey, otherDefault, other);
    reader.GetIfOk(oemFile, oemSection, oemKey, defaultValue, value);
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

int RunIniKey(const IniOptions& options) {
    const int defaultNumber = options.number ? ToNumber(options.defaultText.value_or("0")) : 0;
    ReadWholeFile(options.file, kLargestIniFile);  // the library does not say why a file cannot be read
    Report report;
    report.Add("file", options.file);
    report.Add("section", options.section);
    report.Add("key", options.key);
    bool found = false;
    if (options.number) {
        const auto setting =
            ReadIni(options.file, options.section, options.key, defaultNumber, defaultNumber == 0 ? 1 : 0);
        report.Add("value", static_cast<long long>(setting.value));
        found = setting.found;
    } else {
        const std::string defaultText = ToOem(options.defaultText.value_or(""));
        const auto setting =
            ReadIni(options.file, options.section, options.key, defaultText, defaultText + "x");
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

/// The names of the sections, or of the keys in a section, as the system reads them.
std::vector<std::string> NamesIn(const std::string& path, const std::optional<std::string>& section) {
    const std::wstring file = Wide(FullPath(path));
    const std::wstring wideSection = Wide(section.value_or(""));
    std::wstring list(4096, L'\0');
    DWORD units = 0;
    for (;;) {
        units = GetPrivateProfileStringW(section ? wideSection.c_str() : nullptr, nullptr, L"", list.data(),
                                         static_cast<DWORD>(list.size()), file.c_str());
        if (units + 2 < list.size() || list.size() > kLargestIniFile) {
            break;
        }
        list.resize(2 * list.size());
    }
    std::vector<std::string> names;
    std::wstring_view rest(list.data(), units);
    while (!rest.empty()) {
        const std::wstring name(rest.substr(0, rest.find(L'\0')));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        std::string utf8;
        velm::WindowsUtil::GetUtf8StringFromWstring(name, utf8);
        if (!utf8.empty() && std::ranges::find(names, utf8) == names.end()) {  // the first one wins
            names.push_back(utf8);
        }
        if (names.size() > kMaxNames) {
            throw Failure{path + ": has too many names to list: more than " + std::to_string(kMaxNames)};
        }
    }
    return names;
}

bool IsNonAsciiUtf8(std::string_view bytes) {
    bool nonAscii = false;
    while (!bytes.empty()) {
        char32_t code = 0;
        const std::size_t size = ReadUtf8(bytes, code);
        if (size == 0) {
            return false;
        }
        nonAscii |= size > 1;
        bytes.remove_prefix(size);
    }
    return nonAscii;
}

/// Reports the encoding in which the system reads a file, and what is wrong with it.
void AddEncoding(const std::string& bytes, Report& report) {
    const std::string fix = "; save the file as UTF-16 LE with a byte-order mark";
    if (bytes.starts_with("\xFF\xFE")) {
        report.Add("encoding", picojson::value("UTF-16 LE"), "UTF-16 LE, by its byte-order mark");
        return;
    }
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        report.Add("encoding", picojson::value("UTF-8"), "UTF-8, by its byte-order mark");
        report.Add("warning", "Windows' INI functions do not support UTF-8" + fix);
        return;
    }
    const std::string page = std::to_string(GetACP());
    report.Add("encoding", picojson::value("ANSI"), "ANSI, code page " + page + ": no byte-order mark");
    report.Add("code_page", static_cast<long long>(GetACP()));
    if (IsNonAsciiUtf8(bytes)) {
        report.Add("warning", "UTF-8 without a byte-order mark is read as ANSI, code page " + page + fix);
    }
}

picojson::value KeysOf(const std::string& path, const std::string& section, std::vector<std::string>& lines) {
    picojson::array keys;
    for (const std::string& key : NamesIn(path, section)) {
        picojson::object entry{{"name", picojson::value(key)}};
        try {
            const auto setting = ReadIni<std::string>(path, section, key, "", "x");
            entry["value"] = setting.found ? picojson::value(setting.value) : picojson::value();
            lines.push_back("    " + key + (setting.found ? " = " + setting.value : ": no value"));
        } catch (const Failure& failure) {
            entry["value"] = picojson::value();
            lines.push_back("    " + key + ": the library cannot read it: " + failure.message);
        }
        keys.emplace_back(entry);
    }
    return picojson::value(keys);
}

/// Lists the whole file, or one section.
int RunIniList(const IniOptions& options) {
    const std::string bytes = ReadWholeFile(options.file, kLargestIniFile);
    Report report;
    report.Add("file", options.file);
    AddEncoding(bytes, report);
    picojson::array sections;
    std::vector<std::string> lines;
    const auto names = NamesIn(options.file, std::nullopt);
    for (const std::string& name : options.section.empty() ? names : std::vector{options.section}) {
        lines.push_back('[' + name + ']');
        sections.emplace_back(
            picojson::object{{"name", picojson::value(name)}, {"keys", KeysOf(options.file, name, lines)}});
    }
    if (!options.section.empty() && lines.size() == 1) {
        throw Failure{options.file + ": no keys in section \"" + options.section + "\""};
    }
    report.AddLines("sections", picojson::value(sections), lines);
    report.Print(options.json);
    return 0;
}

}  // namespace

void AddConfigIni(CLI::App& config, int& exitStatus) {
    const auto options = std::make_shared<IniOptions>();
    CLI::App* const command = config.add_subcommand("ini", "Reads an INI file");
    Explain(
        command,
        "Prints one value of an INI file, or the default. The exit status is 0 if the file has a value and 1 "
        "if it has none. Without a KEY, lists the section, or all sections, and the encoding in which "
        "Windows reads the file.",
        "velmdiag config ini client.ini network port --int --default 443");
    command->add_option("FILE", options->file, "the INI file")->type_name(kFileType)->required();
    command->add_option("SECTION", options->section, "the section, without brackets; all if not given");
    CLI::Option* const key =
        command->add_option("KEY", options->key, "the key in the section; all if not given");
    command->add_option("--default", options->defaultText, "print this when the file has no value")
        ->needs(key);
    command->add_flag("--int", options->number, "read the value as a number")->needs(key);
    command->add_flag("--json", options->json, "print one JSON object");
    command->callback([options, key, &exitStatus] {
        exitStatus = key->count() != 0 ? RunIniKey(*options) : RunIniList(*options);
    });
}

}  // namespace velmdiag
