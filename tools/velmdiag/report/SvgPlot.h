#pragma once

#include <string>

#include "Document.h"

namespace velmdiag::report {

/// Text from anywhere as HTML or SVG shows it: nothing in it is markup, control or hidden.
std::string Escaped(const std::string& text);

/// Draws a plot as an SVG element that takes its colours from the page.
std::string SvgOf(const Plot& plot);

}  // namespace velmdiag::report
