#include "Report.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "Text.h"
#include "velm/platform/CommandLine.h"

namespace velmdiag {
namespace {

bool ReplaceInvalidUtf8(std::string& text) {
    std::string valid = ValidUtf8(text);
    const bool replaced = valid != text;
    text = std::move(valid);
    return replaced;
}

/// Makes all texts in a value valid UTF-8.
/// @return whether anything was replaced
bool ReplaceInvalidUtf8(picojson::value& value) {
    bool replaced = false;
    if (value.is<std::string>()) {
        replaced = ReplaceInvalidUtf8(value.get<std::string>());
    } else if (value.is<picojson::array>()) {
        for (picojson::value& element : value.get<picojson::array>()) {
            replaced |= ReplaceInvalidUtf8(element);
        }
    } else if (value.is<picojson::object>()) {
        picojson::object members;
        for (auto& [name, member] : value.get<picojson::object>()) {
            std::string validName = name;
            replaced |= ReplaceInvalidUtf8(validName);
            replaced |= ReplaceInvalidUtf8(member);
            members[validName] = std::move(member);
        }
        value = picojson::value(std::move(members));
    }
    return replaced;
}

void TransformTexts(picojson::value& value, const std::function<std::string(const std::string&)>& replace) {
    if (value.is<std::string>()) {
        value = picojson::value(replace(value.get<std::string>()));
    } else if (value.is<picojson::array>()) {
        for (picojson::value& element : value.get<picojson::array>()) {
            TransformTexts(element, replace);
        }
    } else if (value.is<picojson::object>()) {
        for (auto& [name, member] : value.get<picojson::object>()) {
            TransformTexts(member, replace);
        }
    }
}

}  // namespace

void Report::Add(const std::string& key, const std::string& text) {
    Add(key, picojson::value(text), text);
}

void Report::Add(const std::string& key, const char* text) {
    Add(key, std::string(text));
}

void Report::Add(const std::string& key, bool flag) {
    Add(key, picojson::value(flag), flag ? "yes" : "no");
}

void Report::Add(const std::string& key, long long number) {
    Add(key, picojson::value(static_cast<double>(number)), std::to_string(number));
}

void Report::Add(const std::string& key, double number, const char* unit, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << number;
    if (*unit != '\0') {
        text << ' ' << unit;
    }
    Add(key, picojson::value(number), text.str());
}

void Report::Add(const std::string& key, picojson::value value, const std::string& text) {
    m_entries.push_back({key, std::move(value), text, {}});
}

void Report::AddLines(const std::string& key, picojson::value value, std::vector<std::string> lines) {
    m_entries.push_back({key, std::move(value), "", std::move(lines)});
}

void Report::AddUnknown(const std::string& key) {
    Add(key, picojson::value(), "unknown");
}

void Report::Print(bool json) const {
    if (json) {
        Print(true, std::cout);
    } else {
        PrintLines(std::cout, velm::platform::OutputTakesColors());
    }
}

void Report::Print(bool json, std::ostream& out) const {
    if (json) {
        out << Json().serialize(true);
    } else {
        PrintLines(out, false);
    }
}

void Report::PrintLines(std::ostream& out, bool colors) const {
    std::size_t width = 0;
    for (const Entry& entry : m_entries) {
        width = std::max(width, entry.key.size());
    }
    for (const Entry& entry : m_entries) {
        std::string label = entry.key;
        std::replace(label.begin(), label.end(), '_', ' ');
        const std::size_t padded = entry.text.empty() ? 0 : width + 2;
        out << (colors ? "\x1b[36m" : "") << std::left << std::setw(static_cast<int>(padded)) << label
            << (colors ? "\x1b[0m" : "") << Printable(entry.text) << '\n';
        for (const std::string& line : entry.lines) {
            out << "    " << Printable(line) << '\n';
        }
    }
}

void Report::PrintList(const std::string& key, const std::vector<Report>& reports, bool json) {
    if (json) {
        picojson::array list;
        for (const Report& report : reports) {
            list.push_back(report.Json());
        }
        Report whole;
        whole.Add(key, picojson::value(list), "");
        whole.Print(true);
        return;
    }
    for (const Report& report : reports) {
        std::cout << (&report != &reports.front() ? "\n" : "");
        report.Print(false);
    }
}

void Report::Transform(const std::function<std::string(const std::string&)>& replace) {
    for (Entry& entry : m_entries) {
        TransformTexts(entry.value, replace);
        entry.text = replace(entry.text);
        for (std::string& line : entry.lines) {
            line = replace(line);
        }
    }
}

picojson::value Report::Json() const {
    picojson::object object;
    picojson::array replaced;
    for (const Entry& entry : m_entries) {
        object[entry.key] = entry.value;
        if (ReplaceInvalidUtf8(object[entry.key])) {
            replaced.emplace_back(entry.key);
        }
    }
    if (!replaced.empty()) {
        object["invalid_utf8"] = picojson::value(replaced);
    }
    return picojson::value(object);
}

}  // namespace velmdiag
