#pragma once

#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace velmdiag {

/// An error in a JSON document: one line that says where it is and what is wrong.
class JsonSyntaxError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Checks a document strictly against RFC 8259, which the library's parser does not. It also rejects what the
/// library cannot represent: more than 100 levels of arrays and objects, numbers too large for a double, and
/// escapes for half of a surrogate pair. A UTF-8 byte-order mark at the start is ignored.
/// @param onToken  receives each token as written, without the blanks around it
/// Throws JsonSyntaxError with the line and the column, in characters, both from 1.
void CheckJson(std::string_view text, const std::function<void(std::string_view token)>& onToken = {});

/// Formats a document that CheckJson accepts: a line for each member and element, tokens as written.
/// @param escapeHidden  write control characters and invisible characters as \u escapes
std::string FormatJson(std::string_view text, bool escapeHidden);

}  // namespace velmdiag
