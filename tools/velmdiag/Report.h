#pragma once

#include <picojson.h>

#include <string>
#include <utility>
#include <vector>

namespace velmdiag {

/// The results of a command, printed as aligned lines for a person or as one JSON object for a program.
class Report {
public:
    /// @param key  the name in JSON; the label of the line is the same, with blanks for underscores
    void Add(const std::string& key, const std::string& text);
    void Add(const std::string& key, const char* text);
    void Add(const std::string& key, bool flag);
    void Add(const std::string& key, long long number);
    /// @param unit  follows the number in the line; JSON has the number alone
    void Add(const std::string& key, double number, const char* unit = "", int decimals = 3);
    /// A value of any shape: JSON has it whole, the line shows `text`.
    void Add(const std::string& key, picojson::value value, const std::string& text);

    void Print(bool json) const;

    /// Prints reports of one kind: for a program one JSON object, with all of them in the list `key`.
    static void PrintList(const std::string& key, const std::vector<Report>& reports, bool json);

private:
    picojson::value Json() const;

    struct Entry {
        std::string key;
        picojson::value value;
        std::string text;
    };
    std::vector<Entry> m_entries;
};

}  // namespace velmdiag
