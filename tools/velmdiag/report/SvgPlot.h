#pragma once

#include <string>

#include "Document.h"

namespace velmdiag::report {

/// Escapes untrusted text for HTML and SVG; control characters and invisible ones become visible escapes.
std::string Escaped(const std::string& text);

/// Draws a plot as an SVG element that takes its colours from the page.
std::string SvgOf(const Plot& plot);

}  // namespace velmdiag::report
