#include "graphics/AdapterRuleValue.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <iterator>
#include <optional>

namespace velm {
namespace {

template <typename Number>
bool ParseDigits(std::string_view text, int base, Number* number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *number, base);
    return error == std::errc() && stop == end;
}

std::optional<std::int64_t> ParseBits(std::string_view text) {
    std::uint64_t bits = 0;
    if (!text.starts_with("0x") || !ParseDigits(text.substr(2), 16, &bits)) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(bits);
}

/// Four numbers of 16 bits, the most significant first.
std::optional<std::int64_t> ParseVersion(std::string_view text) {
    std::uint64_t version = 0;
    for (int part = 0; part < 4; ++part) {
        const std::size_t size = part < 3 ? text.find('.') : text.size();
        std::uint16_t number = 0;
        if (size == std::string_view::npos || !ParseDigits(text.substr(0, size), 10, &number)) {
            return std::nullopt;
        }
        version = version << 16 | number;
        text.remove_prefix(std::min(size + 1, text.size()));
    }
    return static_cast<std::int64_t>(version);
}

std::optional<GUID> ParseGuid(std::string_view text) {
    constexpr std::string_view kShape = "{........-....-....-....-............}";
    bool right = text.size() == kShape.size();
    for (std::size_t i = 0; right && i < kShape.size(); ++i) {
        right = kShape[i] == '.' || text[i] == kShape[i];
    }
    constexpr std::size_t kTail[] = {20, 22, 25, 27, 29, 31, 33, 35};
    GUID guid{};
    right = right && ParseDigits(text.substr(1, 8), 16, &guid.Data1) &&
            ParseDigits(text.substr(10, 4), 16, &guid.Data2) &&
            ParseDigits(text.substr(15, 4), 16, &guid.Data3);
    for (std::size_t i = 0; right && i < std::size(kTail); ++i) {
        right = ParseDigits(text.substr(kTail[i], 2), 16, &guid.Data4[i]);
    }
    return right ? std::optional(guid) : std::nullopt;
}

/// Removes the leading digits from a text and returns them.
std::string_view TakeDigits(std::string_view& text) {
    const std::string_view digits = text.substr(0, text.find_first_not_of("0123456789"));
    text.remove_prefix(digits.size());
    return digits;
}

/// A JSON number without its sign: digits, fraction and exponent.
struct UnsignedNumber {
    std::string_view whole;
    std::string_view fraction;
    long long exponent = 0;

    /// The digit at a position within `whole` followed by `fraction`.
    int DigitAt(std::size_t place) const {
        return (place < whole.size() ? whole[place] : fraction[place - whole.size()]) - '0';
    }
};

std::optional<UnsignedNumber> SplitNumber(std::string_view text) {
    UnsignedNumber number;
    number.whole = TakeDigits(text);
    if (number.whole.empty() || (number.whole.size() > 1 && number.whole[0] == '0')) {
        return std::nullopt;
    }
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        number.fraction = TakeDigits(text);
        if (number.fraction.empty()) {
            return std::nullopt;
        }
    }
    if (text.starts_with('e') || text.starts_with('E')) {
        text.remove_prefix(text.starts_with("e+") || text.starts_with("E+") ? 2 : 1);
        if (text.starts_with("+") || !ParseDigits(text, 10, &number.exponent)) {
            return std::nullopt;
        }
        text = {};
    }
    return text.empty() ? std::optional(number) : std::nullopt;
}

/// Parses a JSON number that is an integer of magnitude at most 2^53: many JSON readers round larger ones.
std::optional<std::int64_t> ParseWholeNumber(std::string_view text) {
    constexpr std::int64_t kTooLarge = (std::int64_t{1} << 53) + 1;
    constexpr long long kLongest = 2 * 1024 * 1024;  // longer than any text
    const bool isNegative = text.starts_with('-');
    const auto number = SplitNumber(text.substr(isNegative ? 1 : 0));
    if (!number) {
        return std::nullopt;
    }
    const auto wholePlaces = static_cast<long long>(number->whole.size());
    const long long places = wholePlaces + static_cast<long long>(number->fraction.size());
    const long long point = wholePlaces + std::clamp(number->exponent, -kLongest, kLongest);
    std::int64_t value = 0;
    for (long long place = 0; place < places; ++place) {
        const int digit = number->DigitAt(static_cast<std::size_t>(place));
        if (place >= point && digit != 0) {
            return std::nullopt;
        }
        value = place < point ? std::min(value * 10 + digit, kTooLarge) : value;
    }
    for (long long place = places; place < point && value != 0 && value != kTooLarge; ++place) {
        value = std::min(value * 10, kTooLarge);
    }
    return value != kTooLarge ? std::optional(isNegative ? -value : value) : std::nullopt;
}

std::optional<std::int64_t> ParseNumber(const AdapterRuleToken& value) {
    return value.kind == '"'   ? ParseBits(value.text)
           : value.kind == '0' ? ParseWholeNumber(value.raw)
                               : std::nullopt;
}

// Each of these sets the item and returns whether the value was valid for its type.

bool SetRuleString(D3d9AdapterCheckItem& item, D3d9AdapterCheckCommand command,
                   D3d9AdapterParamCompare compare, const AdapterRuleToken& value) {
    if (value.kind != '"') {
        return false;
    }
    item.SetAsString(command, compare, value.text.c_str());
    return value.text == item.AsString();  // not cut, at 127 bytes or at a NUL
}

bool SetRuleInt64(D3d9AdapterCheckItem& item, D3d9AdapterCheckCommand command,
                  D3d9AdapterParamCompare compare, const AdapterRuleToken& value) {
    const auto version = value.kind == '"' ? ParseVersion(value.text) : std::nullopt;
    const auto number = version ? version : ParseNumber(value);
    item.SetAsInt64(command, compare, number.value_or(0));
    return number.has_value();
}

bool SetRuleUnsigned(D3d9AdapterCheckItem& item, const D3d9AdapterCommand& command,
                     D3d9AdapterParamCompare compare, const AdapterRuleToken& value) {
    const auto number = ParseNumber(value);
    const bool fits = number && *number >= 0 && *number <= UINT32_MAX;
    const auto operand = static_cast<std::uint32_t>(fits ? *number : 0);
    if (command.type == D3D9_ADAPTER_PARAM_DWORD) {
        item.SetAsDWORD(command.command, compare, operand);
    } else {
        item.SetAsUINT(command.command, compare, operand);
    }
    return fits;
}

bool SetRuleGuid(D3d9AdapterCheckItem& item, D3d9AdapterCheckCommand command, D3d9AdapterParamCompare compare,
                 const AdapterRuleToken& value) {
    const auto guid = value.kind == '"' ? ParseGuid(value.text) : std::nullopt;
    item.SetAsGUID(command, compare, guid.value_or(GUID{}));
    return guid.has_value();
}

std::string FormatVersion(long long version) {
    const auto part = [&](int shift) { return static_cast<unsigned int>(version >> shift & 0xFFFF); };
    char text[48] = "";
    std::snprintf(text, sizeof text, "%u.%u.%u.%u", part(48), part(32), part(16), part(0));
    return text;
}

}  // namespace

const char* SetAdapterRuleValue(D3d9AdapterCheckItem& item, const D3d9AdapterCommand& command,
                                D3d9AdapterParamCompare compare, const AdapterRuleToken& value) {
    switch (command.type) {
        case D3D9_ADAPTER_PARAM_STRING:
            return SetRuleString(item, command.command, compare, value) ? nullptr
                                                                        : "a string of at most 127 bytes";
        case D3D9_ADAPTER_PARAM_GUID:
            return SetRuleGuid(item, command.command, compare, value)
                       ? nullptr
                       : "a string like \"{01234567-89AB-CDEF-0123-456789ABCDEF}\"";
        case D3D9_ADAPTER_PARAM_INT64:
            return SetRuleInt64(item, command.command, compare, value)
                       ? nullptr
                       : "a version like \"1.2.3.4\", or a whole number, above 2^53 as \"0x...\"";
        default:
            return SetRuleUnsigned(item, command, compare, value)
                       ? nullptr
                       : "a whole number from 0 to 4294967295, or the same as \"0x...\"";
    }
}

std::string FormatAdapterFact(const D3d9AdapterCommand& command, const D3d9AdapterContext& context) {
    const D3d9AdapterFact fact = command.read(context);
    char bits[16] = "";
    switch (command.type) {
        case D3D9_ADAPTER_PARAM_STRING:
            return fact.text;
        case D3D9_ADAPTER_PARAM_GUID: {
            D3d9AdapterCheckItem item;
            item.SetAsGUID(command.command, D3D9_ADAPTER_COMPARE_EQUAL, fact.guid);
            return item.ValueToString();
        }
        case D3D9_ADAPTER_PARAM_INT64:
            return FormatVersion(fact.number);
        case D3D9_ADAPTER_PARAM_DWORD:
            std::snprintf(bits, sizeof bits, "0x%X", static_cast<unsigned int>(fact.number));
            return bits;
        default:
            return std::to_string(fact.number);
    }
}

}  // namespace velm
