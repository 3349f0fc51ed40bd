#include "Duration.h"

#include <cmath>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace velmdiag {
namespace {

constexpr double kMaxMilliseconds = 24 * 60 * 60 * 1000;

struct Unit {
    std::string_view name;
    double milliseconds;
};

constexpr Unit kUnits[] = {{"", 1000}, {"ms", 1}, {"s", 1000}, {"m", 60'000}, {"h", 3'600'000}};

/// @return milliseconds; none if the text is not a duration within the limits
std::optional<unsigned int> ParseDuration(const std::string& text) {
    const std::string number = text.substr(0, text.find_first_not_of("0123456789."));
    const std::string_view name = std::string_view(text).substr(number.size());
    char* end = nullptr;
    const double value = std::strtod(number.c_str(), &end);
    if (number.empty() || *end != '\0') {
        return std::nullopt;
    }
    for (const Unit& unit : kUnits) {
        const double milliseconds = std::round(value * unit.milliseconds);
        if (name == unit.name && milliseconds >= 1 && milliseconds <= kMaxMilliseconds) {
            return static_cast<unsigned int>(milliseconds);
        }
    }
    return std::nullopt;
}

std::string TextOf(unsigned int milliseconds) {
    return milliseconds % 1000 == 0 ? std::to_string(milliseconds / 1000) + "s"
                                    : std::to_string(milliseconds) + "ms";
}

}  // namespace

CLI::Option* AddDuration(CLI::App& command, const std::string& name, unsigned int& milliseconds,
                         const std::string& description) {
    CLI::Option* const option = command.add_option_function<std::string>(
        name,
        [&milliseconds, name](const std::string& text) {
            const std::optional<unsigned int> parsed = ParseDuration(text);
            if (!parsed) {
                throw CLI::ValidationError(
                    name, text + " is not a duration from 1ms to 24h, such as 1.5s or 500ms");
            }
            milliseconds = *parsed;
        },
        description);
    option->type_name("DURATION");
    if (milliseconds != 0) {
        option->default_str(TextOf(milliseconds));
    }
    return option;
}

}  // namespace velmdiag
