#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace velm {

/// The scrambled form of a printable ASCII character, and back: a rotation by half of the printable ones.
/// Every other byte stays as it is.
constexpr char Rotate(char c) {
    return c >= '!' && c <= '~' ? static_cast<char>('!' + (c - '!' + 47) % 94) : c;
}

/// Turns a text, up to its first NUL, into its scrambled form, or back.
inline std::string Unscramble(std::string_view text) {
    std::string result(text.substr(0, text.find('\0')));
    std::transform(result.begin(), result.end(), result.begin(), Rotate);
    return result;
}

/// The scrambled form of a literal. The plain text exists while compiling only.
template <std::size_t size>
consteval std::array<char, size> Scramble(const char (&plain)[size]) {
    std::array<char, size> result{};
    std::transform(plain, plain + size, result.begin(), Rotate);
    return result;
}

}  // namespace velm
