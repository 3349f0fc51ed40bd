#pragma once

#include <optional>
#include <string_view>

namespace velm {

/// Reads a number with an optional minus, digits with an optional decimal point and an optional exponent. The
/// value is the nearest double, whatever the locale, and the time is linear in the length: the C runtime's
/// strtod takes the point of its locale, and MinGW's takes quadratic time and clamps exponents.
/// @return nothing unless all of the text is such a number and a finite double holds it; what is too small is
/// 0
std::optional<double> ParseJsonNumber(std::string_view text);

}  // namespace velm
