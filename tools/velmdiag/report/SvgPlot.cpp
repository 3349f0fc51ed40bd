#include "SvgPlot.h"

#include <algorithm>

#include "Text.h"

namespace velmdiag::report {
namespace {

constexpr double kWidth = 474;  // of a figure on a wide page, so that its text is as large as the page's

std::string TextAt(double x, double y, const char* anchor, const char* style, const std::string& text) {
    return "<text x=\"" + Fixed(x, 1) + "\" y=\"" + Fixed(y, 1) + "\" text-anchor=\"" + anchor +
           "\" class=\"" + style + "\">" + Escaped(text) + "</text>\n";
}

std::string Rectangle(double x, double y, double width, double height, const char* style) {
    return "<rect x=\"" + Fixed(x, 1) + "\" y=\"" + Fixed(y, 1) + "\" width=\"" + Fixed(width, 1) +
           "\" height=\"" + Fixed(height, 1) + "\" rx=\"2\" class=\"" + style + "\"/>\n";
}

std::string Line(double x1, double y1, double x2, double y2) {
    return "<line x1=\"" + Fixed(x1, 1) + "\" y1=\"" + Fixed(y1, 1) + "\" x2=\"" + Fixed(x2, 1) + "\" y2=\"" +
           Fixed(y2, 1) + "\" class=\"axis\"/>\n";
}

double LargestOf(const Plot& plot) {
    return std::ranges::max_element(plot.bars, {}, &Bar::value)->value;
}

/// Columns over a shared axis, for a distribution.
std::string Columns(const Plot& plot) {
    constexpr double kTop = 24;
    constexpr double kBase = 176;
    const double step = kWidth / static_cast<double>(plot.bars.size());
    const double largest = LargestOf(plot);
    std::string drawn;
    for (std::size_t i = 0; i < plot.bars.size(); ++i) {
        const Bar& bar = plot.bars[i];
        const double middle = (static_cast<double>(i) + 0.5) * step;
        if (bar.value > 0) {
            const double height = std::max(2.0, (kBase - kTop) * bar.value / largest);
            drawn += Rectangle(middle - step / 2 + 3, kBase - height, step - 6, height, "bar");
            drawn += TextAt(middle, kBase - height - 6, "middle", "value", bar.text);
        }
        drawn += TextAt(middle + step / 2, kBase + 18, "middle", "label", bar.edge);
        drawn += Line(middle + step / 2, kBase, middle + step / 2, kBase + 4);
    }
    return drawn + Line(0, kBase, kWidth, kBase);
}

/// A bar for each value, over a track as long as the limit.
std::string Rows(const Plot& plot) {
    constexpr double kLeft = 92;
    constexpr double kRight = 346;
    constexpr double kRow = 30;
    const double full = std::max(plot.limit, LargestOf(plot));
    const double limit = kLeft + (kRight - kLeft) * plot.limit / full;
    std::string drawn = TextAt(limit, 14, "end", "label", plot.limitText);
    for (std::size_t i = 0; i < plot.bars.size(); ++i) {
        const Bar& bar = plot.bars[i];
        const double top = 24 + static_cast<double>(i) * kRow;
        const double length = std::max(1.5, (kRight - kLeft) * bar.value / full);
        drawn += TextAt(kLeft - 10, top + 14, "end", "label", bar.label);
        drawn += Rectangle(kLeft, top, limit - kLeft, 20, "track");
        drawn += Rectangle(kLeft, top, length, 20, bar.value <= plot.limit ? "bar" : "over");
        drawn += TextAt(kRight + 10, top + 14, "start", "value", bar.text);
    }
    return drawn + Line(limit, 20, limit, 20 + kRow * static_cast<double>(plot.bars.size()));
}

}  // namespace

std::string Escaped(const std::string& text) {
    std::string escaped;
    for (const char c : Printable(text)) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string SvgOf(const Plot& plot) {
    return "<svg viewBox=\"0 0 474 200\" role=\"img\" aria-label=\"" + Escaped(plot.title) + "\">\n" +
           (plot.limit > 0 ? Rows(plot) : Columns(plot)) + "</svg>\n";
}

}  // namespace velmdiag::report
