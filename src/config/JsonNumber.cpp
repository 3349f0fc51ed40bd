#include "config/JsonNumber.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace velm {
namespace {

/// Whether a number other than 0 is at least 1, by the place of its first significant digit.
bool IsLarge(std::string_view number) {
    const std::size_t end = std::min(number.find_first_of("eE"), number.size());
    const std::string_view digits = number.substr(0, end);
    const auto point = static_cast<long long>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<long long>(digits.find_first_of("123456789"));
    std::string_view exponentText = number.substr(std::min(end + 1, number.size()));
    if (exponentText.starts_with('+')) {
        exponentText.remove_prefix(1);
    }
    long long exponent = 0;
    const auto [stop, error] =
        std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent);
    if (error == std::errc::result_out_of_range) {
        return !exponentText.starts_with('-');
    }
    return point - first > -exponent;
}

}  // namespace

std::optional<double> ParseJsonNumber(std::string_view text) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (stop != end || error == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (error == std::errc::result_out_of_range) {
        if (IsLarge(text)) {
            return std::nullopt;
        }
        return text.starts_with('-') ? -0.0 : 0.0;
    }
    return number;
}

}  // namespace velm
