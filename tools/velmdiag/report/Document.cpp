#include "Document.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "Command.h"
#include "Text.h"

namespace velmdiag::report {
namespace {

std::size_t Count(const Document& document, Outcome outcome) {
    return static_cast<std::size_t>(
        std::ranges::count(document.tests, outcome, [](const SelfTest& test) { return test.outcome; }));
}

picojson::value JsonOf(const Plot& plot) {
    picojson::array bars;
    for (const Bar& bar : plot.bars) {
        bars.emplace_back(
            picojson::object{{"label", picojson::value(bar.label)}, {"value", picojson::value(bar.value)}});
    }
    return picojson::value(bars);
}

picojson::value JsonOf(const SelfTest& test) {
    Report report;
    report.Add("outcome", NameOf(test.outcome));
    report.Add("finding", test.finding);
    report.Add("seconds", test.seconds);
    report.Add("figures", test.figures.Json(), "");
    for (const Plot& plot : test.plots) {
        report.Add(plot.key, JsonOf(plot), "");
    }
    return report.Json();
}

picojson::value JsonOf(const Section& section) {
    if (!section.isList) {
        return section.items.front().Json();
    }
    picojson::array items;
    for (const Report& item : section.items) {
        items.push_back(item.Json());
    }
    return picojson::value(items);
}

class TextWriter {
public:
    explicit TextWriter(bool colors) : m_colors(colors) {}

    std::string Text() const { return m_out.str(); }

    void Head(const Document& document) {
        Heading("VelmUtil diagnostic report");
        Report head;
        head.Add("verdict", VerdictOf(document));
        head.Add("created", document.created);
        head.Add("velmdiag", document.version);
        head.Add("user_name_and_home", document.redacted ? "redacted" : "shown");
        head.PrintLines(m_out, m_colors);
    }

    void Overview(const Document& document) {
        Heading("Self-tests");
        for (const SelfTest& test : document.tests) {
            m_out << (m_colors ? ColorOf(test.outcome) : "") << std::left << std::setw(9)
                  << NameOf(test.outcome) << (m_colors ? "\x1b[0m" : "") << std::setw(22) << test.title
                  << Printable(test.finding) << '\n';
        }
    }

    void Details(const SelfTest& test) {
        Heading(test.title);
        test.figures.PrintLines(m_out, m_colors);
        for (const Plot& plot : test.plots) {
            m_out << plot.title << '\n';
            for (const Bar& bar : plot.bars) {
                m_out << "    " << std::left << std::setw(16) << bar.label << bar.text << '\n';
            }
        }
    }

    void Facts(const Section& section) {
        Heading(section.title);
        if (section.items.empty()) {
            m_out << Printable(section.ifEmpty) << '\n';
        }
        for (const Report& item : section.items) {
            m_out << (&item != &section.items.front() ? "\n" : "");
            item.PrintLines(m_out, m_colors);
        }
    }

private:
    static const char* ColorOf(Outcome outcome) {
        return outcome == Outcome::passed ? "\x1b[32m" : outcome == Outcome::failed ? "\x1b[31m" : "\x1b[33m";
    }

    void Heading(const std::string& title) {
        m_out << (m_out.tellp() > 0 ? "\n" : "") << (m_colors ? "\x1b[1m" : "") << "== " << title
              << (m_colors ? "\x1b[0m" : "") << '\n';
    }

    bool m_colors;
    std::ostringstream m_out;
};

}  // namespace

int ExitStatusOf(const Document& document) {
    if (Count(document, Outcome::failed) != 0 || !document.adaptersAccepted) {
        return 1;
    }
    return Count(document, Outcome::notRun) != 0 ? kNotDone : 0;
}

std::string VerdictOf(const Document& document) {
    const std::size_t all = document.tests.size();
    const std::size_t failed = Count(document, Outcome::failed);
    const std::size_t notRun = Count(document, Outcome::notRun);
    std::string verdict = "All " + std::to_string(all) + " self-tests passed";
    if (failed != 0) {
        verdict = std::to_string(failed) + " of " + std::to_string(all) + " self-tests failed";
    } else if (notRun != 0) {
        verdict = std::to_string(all - notRun) + " of " + std::to_string(all) + " self-tests passed";
    }
    if (notRun != 0) {
        verdict += ", " + std::to_string(notRun) + " could not run";
    }
    return document.adaptersAccepted ? verdict : verdict + "; a display adapter is refused";
}

const char* NameOf(Outcome outcome) {
    return outcome == Outcome::passed ? "passed" : outcome == Outcome::failed ? "failed" : "not run";
}

void Transform(Document& document, const std::function<std::string(const std::string&)>& replace) {
    for (Section& section : document.sections) {
        section.ifEmpty = replace(section.ifEmpty);
        for (Report& item : section.items) {
            item.Transform(replace);
        }
    }
    for (SelfTest& test : document.tests) {
        test.finding = replace(test.finding);
        test.figures.Transform(replace);
    }
}

std::string TextOf(const Document& document, bool colors) {
    TextWriter writer(colors);
    writer.Head(document);
    writer.Overview(document);
    for (const SelfTest& test : document.tests) {
        if (!test.figures.Entries().empty()) {
            writer.Details(test);
        }
    }
    for (const Section& section : document.sections) {
        writer.Facts(section);
    }
    return writer.Text();
}

std::string JsonOf(const Document& document) {
    Report report;
    report.Add("created", document.created);
    report.Add("velmdiag", document.version);
    report.Add("redacted", document.redacted);
    report.Add("verdict", VerdictOf(document));
    report.Add("exit_status", static_cast<long long>(ExitStatusOf(document)));
    picojson::object tests;
    for (const SelfTest& test : document.tests) {
        tests[test.key] = JsonOf(test);
    }
    report.Add("self_tests", picojson::value(tests), "");
    for (const Section& section : document.sections) {
        report.Add(section.key, JsonOf(section), "");
    }
    return report.Json().serialize(true);
}

std::string Grouped(unsigned long long number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3) {
        text.insert(at - 3, ",");
    }
    return text;
}

void AddCount(Report& report, const std::string& key, unsigned long long number) {
    report.Add(key, picojson::value(static_cast<double>(number)), Grouped(number));
}

void AddTime(Report& report, const std::string& key, double microseconds) {
    const std::string text = microseconds < 1      ? Fixed(microseconds * 1000, 0) + " ns"
                             : microseconds < 10   ? Fixed(microseconds, 1) + " \u00b5s"
                             : microseconds < 1000 ? Fixed(microseconds, 0) + " \u00b5s"
                             : microseconds < 1e5  ? Fixed(microseconds / 1000, 1) + " ms"
                                                   : Fixed(microseconds / 1000, 0) + " ms";
    report.Add(key, picojson::value(microseconds), text);
}

std::string Fixed(double number, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << number;
    return text.str();
}

}  // namespace velmdiag::report
