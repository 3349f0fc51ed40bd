#pragma once

#include <picojson.h>

#include <functional>
#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace velmdiag {

/// The results of a command, printed as aligned lines for a person or as one JSON object for a program.
///
/// Values may contain any bytes. Lines show unprintable characters as escapes. JSON is always valid UTF-8:
/// invalid bytes are replaced, and the list "invalid_utf8" in the object names the keys where that happened.
class Report {
public:
    /// @param key  the name in JSON; the label of the line is the same, with blanks for underscores
    void Add(const std::string& key, const std::string& text);
    void Add(const std::string& key, const char* text);
    void Add(const std::string& key, bool flag);
    void Add(const std::string& key, long long number);
    /// @param unit  follows the number in the line; JSON has the number alone
    void Add(const std::string& key, double number, const char* unit = "", int decimals = 3);
    /// A value of any type: JSON has the value, the line shows `text`.
    void Add(const std::string& key, picojson::value value, const std::string& text);
    /// A value that is shown on separate lines below the label.
    void AddLines(const std::string& key, picojson::value value, std::vector<std::string> lines);
    /// A value that is not known: "unknown" in the line, null in JSON.
    void AddUnknown(const std::string& key);

    void Print(bool json) const;
    /// Prints lines without colours, or JSON, to a stream other than standard output.
    void Print(bool json, std::ostream& out) const;

    /// Prints several reports; as JSON, they are one object with the list `key`.
    static void PrintList(const std::string& key, const std::vector<Report>& reports, bool json);

    struct Entry {
        std::string key;
        picojson::value value;
        std::string text;
        std::vector<std::string> lines;
    };
    const std::vector<Entry>& Entries() const { return m_entries; }
    picojson::value Json() const;
    void PrintLines(std::ostream& out, bool colors) const;

    /// Applies `replace` to every text in the values, both for lines and for JSON.
    void Transform(const std::function<std::string(const std::string&)>& replace);

private:
    std::vector<Entry> m_entries;
};

}  // namespace velmdiag
