#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velmdiag {

/// Says where a JSON document is wrong, and why, in one line.
class JsonSyntaxError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Checks a document strictly against RFC 8259, which the library's parser does not. It also refuses what the
/// library cannot hold: more than 100 levels of arrays and objects, numbers too large for a double, and
/// escapes for half of a surrogate pair. A UTF-8 byte-order mark at the start is ignored.
/// @param take  receives each token as it was written, without the blanks around it
/// Throws JsonSyntaxError with the line and the column, in characters, both from 1.
void CheckJson(std::string_view text, const std::function<void(std::string_view token)>& take = {});

/// Lays out a document that CheckJson accepts: a line for each member and element, tokens as they were
/// written.
/// @param escapeHidden  write characters that would act on a terminal, or hide, as \u escapes
std::string FormatJson(std::string_view text, bool escapeHidden);

}  // namespace velmdiag
