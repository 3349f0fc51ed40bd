#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace velm {

/// Scrambles or unscrambles one character: rotates "!" to "~" by half their number, 47. Other bytes stay.
constexpr char Rotate(char c) {
    return c >= '!' && c <= '~' ? static_cast<char>('!' + (c - '!' + 47) % 94) : c;
}

/// Scrambles or unscrambles a text, up to its first NUL.
inline std::string Unscramble(std::string_view text) {
    std::string result(text.substr(0, text.find('\0')));
    std::transform(result.begin(), result.end(), result.begin(), Rotate);
    return result;
}

/// The scrambled form of a literal, computed at compile time.
template <std::size_t size>
consteval std::array<char, size> Scramble(const char (&plain)[size]) {
    std::array<char, size> result{};
    std::transform(plain, plain + size, result.begin(), Rotate);
    return result;
}

}  // namespace velm
