/// @file
/// The results of `velmdiag report`, to be formatted as text, JSON or HTML.
#pragma once

#include <picojson.h>

#include <functional>
#include <string>
#include <vector>

#include "Report.h"

namespace velmdiag::report {

struct Bar {
    std::string label;
    double value = 0;
    std::string text;  ///< the value with its unit
    std::string edge;  ///< in a distribution: the axis label at the column's right end
};

/// A bar chart: rows with a limit, or the columns of a distribution.
struct Plot {
    std::string key;
    std::string title;
    std::string caption;
    std::vector<Bar> bars;
    double limit = 0;       ///< that no bar should exceed; 0 for a distribution
    std::string limitText;  ///< names the limit
};

enum class Outcome { passed, failed, notRun };

/// The result of a family's self-test.
struct SelfTest {
    std::string key;
    std::string title;
    Outcome outcome = Outcome::notRun;
    std::string finding;  ///< one sentence: the result, or why it failed or did not run
    double seconds = 0;
    Report figures;
    std::vector<Plot> plots;
};

/// Facts of one kind; an empty section says why it is empty.
struct Section {
    std::string key;
    std::string title;
    std::vector<Report> items;
    std::string ifEmpty;
    bool isList = true;  ///< otherwise it has a single item
};

struct Document {
    std::string created;  ///< in UTC
    std::string version;
    bool redacted = true;
    bool adaptersAccepted = true;
    std::vector<Section> sections;
    std::vector<SelfTest> tests;
};

/// The exit status of a report: 0 if all tests passed, 1 if one failed or an adapter is refused, 2 if none
/// failed but one could not run.
int ExitStatusOf(const Document& document);

/// The same in words, such as "All 7 self-tests passed".
std::string VerdictOf(const Document& document);

const char* NameOf(Outcome outcome);

/// Applies `replace` to every text that comes from outside the program.
void Transform(Document& document, const std::function<std::string(const std::string&)>& replace);

std::string TextOf(const Document& document, bool colors);
std::string JsonOf(const Document& document);
std::string HtmlOf(const Document& document);

/// A whole number in groups of three digits, such as 12,345.
std::string Grouped(unsigned long long number);

/// A number with the given number of decimals.
std::string Fixed(double number, int decimals);

/// Adds a large number; text has it in groups of three digits.
void AddCount(Report& report, const std::string& key, unsigned long long number);

/// Adds a time; text has it in a suitable unit, JSON in microseconds.
void AddTime(Report& report, const std::string& key, double microseconds);

}  // namespace velmdiag::report
