#pragma once

#include <optional>
#include <string_view>

namespace velm {

/// Parses a number: an optional minus, digits with an optional decimal point, an optional exponent. Rounds to
/// the nearest double, ties to even, whatever the locale; takes linear time and allocates nothing. (strtod
/// would expect the locale's decimal point; MinGW's takes quadratic time and clamps exponents.)
/// @return nothing unless the whole text is such a number and within the range of a double; 0 for a number
///         too small for a double
std::optional<double> ParseJsonNumber(std::string_view text);

}  // namespace velm
