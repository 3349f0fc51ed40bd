#include "Report.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "velm/platform/CommandLine.h"

namespace velmdiag {

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
    m_entries.push_back({key, std::move(value), text});
}

void Report::Print(bool json) const {
    if (json) {
        std::cout << Json().serialize(true);
        return;
    }
    const bool colors = velm::platform::OutputTakesColors();
    std::size_t width = 0;
    for (const Entry& entry : m_entries) {
        width = std::max(width, entry.key.size());
    }
    for (const Entry& entry : m_entries) {
        std::string label = entry.key;
        std::replace(label.begin(), label.end(), '_', ' ');
        std::cout << (colors ? "\x1b[36m" : "") << std::left << std::setw(static_cast<int>(width) + 2)
                  << label << (colors ? "\x1b[0m" : "") << entry.text << '\n';
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

picojson::value Report::Json() const {
    picojson::object object;
    for (const Entry& entry : m_entries) {
        object[entry.key] = entry.value;
    }
    return picojson::value(object);
}

}  // namespace velmdiag
