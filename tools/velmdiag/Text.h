/// @file
/// Makes untrusted text (links, file names, settings) safe to show.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmdiag {

/// The length in bytes of the UTF-8 character (RFC 3629) at the start of a text; 0 if there is none.
/// @param code  out: the character; unchanged if there is none
std::size_t ReadUtf8(std::string_view text, char32_t& code);

/// Whether a character is neither a control character nor one that reorders or hides others.
bool IsVisible(char32_t code);

/// Makes text safe for a terminal or a log: a single line that cannot control the terminal. Control
/// characters become escapes such as \n and \x1b, invalid bytes \xff, and characters that reorder or hide
/// text \u{202e}.
std::string Printable(std::string_view text);

/// The text with every byte that is not UTF-8 replaced by U+FFFD.
std::string ValidUtf8(std::string_view text);

}  // namespace velmdiag
