/// @file
/// Text that others wrote (links, file names, settings), made safe to show.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velmdiag {

/// The length of the UTF-8 character (RFC 3629) that a text begins with; 0 when it begins with none.
/// @param code  receives the character; unchanged when there is none
std::size_t ReadUtf8(std::string_view text, char32_t& code);

/// Whether a character shows as itself: no control character, and none that reorders or hides others.
bool IsVisible(char32_t code);

/// Text for a terminal or a log: one line, and nothing in it acts on the terminal. Control characters become
/// escapes such as \n and \x1b, bytes that are not UTF-8 become \xff, and characters that reorder or hide
/// text become \u{202e}.
std::string Printable(std::string_view text);

/// The text with every byte that is not UTF-8 replaced by U+FFFD.
std::string ValidUtf8(std::string_view text);

}  // namespace velmdiag
