#include <algorithm>
#include <cstring>
#include <span>
#include <sstream>

#include "Document.h"
#include "SvgPlot.h"

namespace velmdiag::report {
namespace {

constexpr const char* kHead = R"html(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<title>VelmUtil diagnostic report</title>
<style>
html { color-scheme: light dark; --page: #fff; --ink: #1c2430; --soft: #5c6878; --line: #dde3ea; --card: #f5f7fa;
  --accent: #2f6fb7; --good: #157347; --bad: #b3261e; --idle: #8a5a00; --good-back: #e6f4ec; --bad-back: #fbe9e7;
  --idle-back: #fbf1de; }
@media (prefers-color-scheme: dark) { html { --page: #14181f; --ink: #e4e9f0; --soft: #9aa7b8; --line: #2c3542;
  --card: #1c222c; --accent: #6ea8e6; --good: #6cc795; --bad: #ff9188; --idle: #e8b65a; --good-back: #17301f;
  --bad-back: #3a1d1b; --idle-back: #33280f; } }
@media print { html { color-scheme: light; --page: #fff; --ink: #000; --soft: #444; --line: #bbb; --card: #fff;
  --accent: #2f6fb7; --good: #157347; --bad: #b3261e; --idle: #8a5a00; --good-back: #fff; --bad-back: #fff;
  --idle-back: #fff; }
  * { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
  figure, tr, .card { break-inside: avoid; } h2 { break-after: avoid; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--ink);
  font: 15px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif; }
main { max-width: 1120px; margin: 0 auto; padding: 36px 32px 48px; }
header p { margin: 0; color: var(--soft); }
h1 { margin: 14px 0 20px; padding: 16px 20px; border-radius: 8px; border-left: 6px solid; font-size: 26px; line-height: 1.25; }
h2 { margin: 36px 0 10px; font-size: 18px; }
h3 { margin: 0 0 6px; font-size: 15px; }
.passed { color: var(--good); } .failed { color: var(--bad); } .notrun { color: var(--idle); }
h1.passed { background: var(--good-back); } h1.failed { background: var(--bad-back); } h1.notrun { background: var(--idle-back); }
.glance { display: grid; grid-template-columns: 2fr 2fr 1fr 1fr; gap: 12px 28px; margin: 0; }
.glance dt { color: var(--soft); font-size: 13px; } .glance dd { margin: 0; font-weight: 600; overflow-wrap: anywhere; }
table { width: 100%; border-collapse: collapse; }
th, td { padding: 7px 12px 7px 0; text-align: left; vertical-align: top; border-bottom: 1px solid var(--line); overflow-wrap: anywhere; }
th { color: var(--soft); font-weight: 500; font-size: 13px; }
td.state, td.name { font-weight: 600; white-space: nowrap; } td.state, td.name { padding-right: 22px; }
td.number, th.number { text-align: right; padding-right: 0; white-space: nowrap; font-variant-numeric: tabular-nums; }
.plots { display: grid; grid-template-columns: repeat(auto-fill, minmax(440px, 1fr)); gap: 28px; }
figure { margin: 0; padding: 16px 20px; background: var(--card); border: 1px solid var(--line); border-radius: 8px; }
figcaption { color: var(--soft); font-size: 13px; } figure strong { display: block; margin-bottom: 8px; }
svg { display: block; width: 100%; height: auto; } svg text { font-size: 12px; fill: var(--ink); }
svg .label { fill: var(--soft); } svg .bar { fill: var(--accent); } svg .over { fill: var(--bad); }
svg .track { fill: var(--line); } svg .axis { stroke: var(--soft); stroke-width: 1; }
.cards { columns: 2; column-gap: 28px; } .card { break-inside: avoid; margin: 0 0 22px; }
.halves { display: grid; grid-template-columns: 1fr 1fr; gap: 0 28px; align-items: start; } .halves + .halves { margin-top: 22px; }
th[scope=row] { width: 40%; font-size: 14px; padding: 4px 12px 4px 0; } th[scope=row] + td { padding: 4px 0; font-variant-numeric: tabular-nums; }
.whole th[scope=row] { width: 22%; }
pre { margin: 0; padding: 12px 16px; background: var(--card); border: 1px solid var(--line); border-radius: 8px;
  font: 13px/1.5 ui-monospace, Consolas, "DejaVu Sans Mono", monospace; white-space: pre-wrap; overflow-wrap: anywhere; }
footer { margin-top: 36px; padding-top: 12px; border-top: 1px solid var(--line); color: var(--soft); font-size: 13px; }
@media print { body { font-size: 12px; } main { padding: 0; } h1 { font-size: 21px; } h2 { margin-top: 24px; }
  .plots { grid-template-columns: 1fr 1fr; } }
@media screen and (max-width: 760px) { .cards { columns: 1; } .halves, .plots, .glance { grid-template-columns: 1fr; } main { padding: 20px 16px; } }
</style>
</head>
<body>
<main>
)html";

const char* ClassOf(Outcome outcome) {
    return outcome == Outcome::passed ? "passed" : outcome == Outcome::failed ? "failed" : "notrun";
}

const char* MarkOf(Outcome outcome) {
    return outcome == Outcome::passed ? "\u2713 " : outcome == Outcome::failed ? "\u2717 " : "\u2013 ";
}

/// A key as a label, such as "Frames lost".
std::string LabelOf(std::string key) {
    constexpr struct {
        const char* key;
        const char* label;
    } kAcronyms[] = {
        {"utf_16", "UTF 16"}, {"utf_8", "UTF 8"}, {"ini_", "INI "}, {"json_", "JSON "}, {"oem_", "OEM "}};
    for (const auto& acronym : kAcronyms) {
        if (const std::size_t at = key.find(acronym.key); at != std::string::npos) {
            key.replace(at, std::strlen(acronym.key), acronym.label);
        }
    }
    std::ranges::replace(key, '_', ' ');
    std::ranges::replace(key, '-', ' ');
    if (!key.empty() && key.front() >= 'a' && key.front() <= 'z') {
        key.front() = static_cast<char>(key.front() - 'a' + 'A');
    }
    return Escaped(key);
}

class HtmlWriter {
public:
    explicit HtmlWriter(const Document& document) : m_document(document) {}

    std::string Write() {
        m_out << kHead;
        Head();
        Overview();
        Plots();
        for (const Section& section : m_document.sections) {
            Facts(section);
        }
        Figures();
        m_out << "<footer>"
              << (m_document.redacted ? "The user's name and home folder are replaced by &lt;user&gt; and "
                                        "&lt;home&gt;. "
                                      : "Contains the user's name and home folder. ")
              << "Made by velmdiag " << Escaped(m_document.version)
              << "; this file loads nothing from elsewhere.</footer>\n</main>\n</body>\n</html>\n";
        return m_out.str();
    }

private:
    void Head() {
        const int status = ExitStatusOf(m_document);
        const Outcome outcome = status == 0   ? Outcome::passed
                                : status == 1 ? Outcome::failed
                                              : Outcome::notRun;
        m_out << "<header>\n<p>VelmUtil diagnostic report \u00b7 " << Escaped(m_document.created)
              << "</p>\n<h1 class=\"" << ClassOf(outcome) << "\">" << MarkOf(outcome)
              << Escaped(VerdictOf(m_document)) << "</h1>\n<dl class=\"glance\">\n";
        Glance("System", "system", "system");
        Glance("Display adapter", "adapters", "description");
        Glance("Picture kernel", "system", "picture_kernel");
        Glance("VelmUtil", "libraries", "version");
        m_out << "</dl>\n</header>\n";
    }

    /// The value of a key in a section's first item, with the item's verdict if it has one.
    void Glance(const char* title, const std::string& sectionKey, const std::string& key) {
        std::string text = "none";
        for (const Section& section : m_document.sections) {
            if (section.key == sectionKey && !section.items.empty()) {
                for (const Report::Entry& entry : section.items.front().Entries()) {
                    text = entry.key == key         ? entry.text
                           : entry.key == "verdict" ? text + ", " + entry.text
                                                    : text;
                }
            }
        }
        m_out << "<div><dt>" << title << "</dt><dd>" << Escaped(text) << "</dd></div>\n";
    }

    void Overview() {
        m_out << "<section>\n<h2>Self-tests</h2>\n<table>\n<thead><tr><th>Result</th><th>Family</"
                 "th><th>Finding</th>"
                 "<th class=\"number\">Time</th></tr></thead>\n<tbody>\n";
        for (const SelfTest& test : m_document.tests) {
            m_out << "<tr><td class=\"state " << ClassOf(test.outcome) << "\">" << MarkOf(test.outcome)
                  << NameOf(test.outcome) << "</td><td class=\"name\">" << Escaped(test.title) << "</td><td>"
                  << Escaped(test.finding) << "</td><td class=\"number\">" << Fixed(test.seconds, 2)
                  << " s</td></tr>\n";
        }
        m_out << "</tbody>\n</table>\n</section>\n";
    }

    void Plots() {
        m_out << "<section>\n<h2>Timing</h2>\n<div class=\"plots\">\n";
        for (const SelfTest& test : m_document.tests) {
            for (const Plot& plot : test.plots) {
                m_out << "<figure>\n<strong>" << Escaped(plot.title) << "</strong>\n"
                      << SvgOf(plot) << "<figcaption>" << Escaped(plot.caption)
                      << "</figcaption>\n</figure>\n";
            }
        }
        m_out << "</div>\n</section>\n";
    }

    void Figures() {
        m_out << "<section>\n<h2>Figures</h2>\n<div class=\"cards\">\n";
        for (const SelfTest& test : m_document.tests) {
            if (!test.figures.Entries().empty()) {
                m_out << "<div class=\"card\">\n<h3>" << Escaped(test.title) << "</h3>\n";
                Pairs(test.figures.Entries());
                m_out << "</div>\n";
            }
        }
        m_out << "</div>\n</section>\n";
    }

    void Pairs(std::span<const Report::Entry> entries) {
        m_out << "<table>\n";
        for (const Report::Entry& entry : entries) {
            m_out << "<tr><th scope=\"row\">" << LabelOf(entry.key) << "</th><td>" << Escaped(entry.text)
                  << "</td></tr>\n";
        }
        m_out << "</table>\n";
    }

    /// Pairs in two columns, or in one if a text is long.
    void Columns(std::span<const Report::Entry> entries) {
        constexpr std::size_t kLongest = 40;
        if (std::ranges::any_of(entries,
                                [](const Report::Entry& entry) { return entry.text.size() > kLongest; })) {
            m_out << "<div class=\"whole\">\n";
            Pairs(entries);
            m_out << "</div>\n";
            return;
        }
        const std::size_t half = (entries.size() + 1) / 2;
        m_out << "<div class=\"halves\">\n";
        Pairs(entries.first(half));
        Pairs(entries.subspan(half));
        m_out << "</div>\n";
    }

    void Facts(const Section& section) {
        constexpr std::size_t kMaxColumns = 7;
        m_out << "<section>\n<h2>" << Escaped(section.title) << "</h2>\n";
        if (section.items.empty()) {
            m_out << "<p>" << Escaped(section.ifEmpty) << "</p>\n";
        } else if (!section.items.front().Entries().front().lines.empty()) {
            Lines(section.items.front().Entries().front().lines);
        } else if (section.isList && section.items.front().Entries().size() <= kMaxColumns) {
            Rows(section.items);
        } else {
            for (const Report& item : section.items) {
                Columns(item.Entries());
            }
        }
        m_out << "</section>\n";
    }

    void Lines(const std::vector<std::string>& lines) {
        m_out << "<pre>";
        for (const std::string& line : lines) {
            m_out << Escaped(line) << '\n';
        }
        m_out << "</pre>\n";
    }

    /// A table of items with the same keys, one per row.
    void Rows(const std::vector<Report>& items) {
        m_out << "<table>\n<thead><tr>";
        for (const Report::Entry& entry : items.front().Entries()) {
            m_out << "<th>" << LabelOf(entry.key) << "</th>";
        }
        m_out << "</tr></thead>\n<tbody>\n";
        for (const Report& item : items) {
            m_out << "<tr>";
            for (const Report::Entry& entry : item.Entries()) {
                m_out << "<td>" << Escaped(entry.text) << "</td>";
            }
            m_out << "</tr>\n";
        }
        m_out << "</tbody>\n</table>\n";
    }

    const Document& m_document;
    std::ostringstream m_out;
};

}  // namespace

std::string HtmlOf(const Document& document) {
    return HtmlWriter(document).Write();
}

}  // namespace velmdiag::report
