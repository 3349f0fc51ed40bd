#pragma once

#include <optional>
#include <string_view>

namespace velm {

/// Reads a number: an optional minus, digits with an optional decimal point, an optional exponent. The result
/// is the nearest double, the even one of two, in any locale, in time linear in the length and without
/// memory. The C runtime's strtod takes its locale's decimal point; MinGW's takes quadratic time and clamps
/// exponents.
/// @return nothing unless all of the text is such a number and a finite double holds it; a number too small
///         for a double is 0
std::optional<double> ParseJsonNumber(std::string_view text);

}  // namespace velm
