#include "AdapterRules.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <string_view>

namespace velmdiag {
namespace {

using Item = velm::D3d9AdapterCheckItem;
using Command = velm::D3d9AdapterCommand;

constexpr int kDeepest = 3;                           // the file, its list, a rule
constexpr double kLargestExact = 9007199254740992.0;  // 2^53: JSON numbers are doubles

constexpr struct Operator {
    std::string_view name;
    velm::D3d9AdapterParamCompare compare;
} kOperators[] = {
    {"==", velm::D3D9_ADAPTER_COMPARE_EQUAL},        {"!=", velm::D3D9_ADAPTER_COMPARE_NOT_EQUAL},
    {">", velm::D3D9_ADAPTER_COMPARE_GREATER},       {">=", velm::D3D9_ADAPTER_COMPARE_GREATER_EQUAL},
    {"<=", velm::D3D9_ADAPTER_COMPARE_LESS_EQUAL},   {"<", velm::D3D9_ADAPTER_COMPARE_LESS},
    {"has-any", velm::D3D9_ADAPTER_COMPARE_AND_ANY}, {"has-none", velm::D3D9_ADAPTER_COMPARE_AND_NONE},
};

bool Suits(velm::D3d9AdapterParamCompare compare, velm::D3d9AdapterParamType type) {
    switch (type) {
        case velm::D3D9_ADAPTER_PARAM_GUID:
            return compare <= velm::D3D9_ADAPTER_COMPARE_NOT_EQUAL;
        case velm::D3D9_ADAPTER_PARAM_STRING:
            return compare <= velm::D3D9_ADAPTER_COMPARE_LESS;
        default:
            return true;
    }
}

std::string Quoted(std::string text) {
    constexpr std::size_t kShown = 60;
    if (text.size() > kShown) {
        text = text.substr(0, kShown) + "...";
    }
    return picojson::value(text).serialize();
}

/// The parser's recursion follows the text, so the nesting is bounded before it sees it.
bool NestsTooDeep(const std::string& text) {
    int depth = 0;
    bool inText = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inText) {
            i += c == '\\';
            inText = c != '"';
        } else if (c == '"') {
            inText = true;
        } else if (c == '{' || c == '[') {
            if (++depth > kDeepest) {
                return true;
            }
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return false;
}

picojson::value ParseJson(const std::string& text) {
    if (NestsTooDeep(text)) {
        throw RuleError("is nested deeper than rules are");
    }
    picojson::value json;
    std::string error;
    auto end = text.begin();
    try {
        end = picojson::parse(json, text.begin(), text.end(), &error);
    } catch (const std::overflow_error&) {
        throw RuleError("has a number that is too large");
    }
    if (!error.empty()) {
        throw RuleError("is not JSON: " + error.substr(0, error.find('\n')));
    }
    if (text.find_first_not_of(" \t\r\n", static_cast<std::size_t>(end - text.begin())) !=
        std::string::npos) {
        throw RuleError("goes on after the end of the JSON");
    }
    return json;
}

/// A member of an object that must be there; all members must be among `known`.
const picojson::value& Member(const picojson::value& json, const char* name,
                              std::initializer_list<std::string_view> known) {
    if (!json.is<picojson::object>()) {
        throw RuleError("is not an object");
    }
    for (const auto& [key, ignored] : json.get<picojson::object>()) {
        if (std::find(known.begin(), known.end(), key) == known.end()) {
            throw RuleError("has an unknown member " + Quoted(key));
        }
    }
    if (!json.contains(name)) {
        throw RuleError("has no \"" + std::string(name) + "\"");
    }
    return json.get(name);
}

template <typename Number>
bool ParseWhole(std::string_view text, int base, Number* number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *number, base);
    return error == std::errc() && stop == end;
}

std::optional<std::uint64_t> ParseHex(std::string_view text) {
    std::uint64_t number = 0;
    if (text.substr(0, 2) != "0x" || !ParseWhole(text.substr(2), 16, &number)) {
        return std::nullopt;
    }
    return number;
}

/// Four numbers of 16 bits, the most significant first.
std::optional<std::uint64_t> ParseVersion(std::string_view text) {
    std::uint64_t version = 0;
    for (int part = 0; part < 4; ++part) {
        const std::size_t size = part < 3 ? text.find('.') : text.size();
        std::uint16_t number = 0;
        if (size == std::string_view::npos || !ParseWhole(text.substr(0, size), 10, &number)) {
            return std::nullopt;
        }
        version = version << 16 | number;
        text.remove_prefix(std::min(size + 1, text.size()));
    }
    return version;
}

/// "{01234567-89AB-CDEF-0123-456789ABCDEF}"
std::optional<GUID> ParseGuid(std::string_view text) {
    constexpr std::string_view kShape = "{........-....-....-....-............}";
    bool right = text.size() == kShape.size();
    for (std::size_t i = 0; right && i < kShape.size(); ++i) {
        right = kShape[i] == '.' || text[i] == kShape[i];
    }
    constexpr std::size_t kTail[] = {20, 22, 25, 27, 29, 31, 33, 35};
    GUID guid{};
    right = right && ParseWhole(text.substr(1, 8), 16, &guid.Data1) &&
            ParseWhole(text.substr(10, 4), 16, &guid.Data2) &&
            ParseWhole(text.substr(15, 4), 16, &guid.Data3);
    for (std::size_t i = 0; right && i < std::size(kTail); ++i) {
        right = ParseWhole(text.substr(kTail[i], 2), 16, &guid.Data4[i]);
    }
    return right ? std::optional(guid) : std::nullopt;
}

/// A JSON number without fraction, or a text such as "0x10DE" for the bits of one.
std::optional<std::int64_t> WholeNumber(const picojson::value& json) {
    if (json.is<std::string>()) {
        const auto bits = ParseHex(json.get<std::string>());
        return bits ? std::optional(static_cast<std::int64_t>(*bits)) : std::nullopt;
    }
    const double number = json.is<double>() ? json.get<double>() : 0.5;
    if (number != std::floor(number) || std::fabs(number) > kLargestExact) {
        return std::nullopt;
    }
    return static_cast<std::int64_t>(number);
}

std::optional<std::uint32_t> Number32(const picojson::value& json) {
    const auto number = WholeNumber(json);
    if (!number || *number < 0 || *number > UINT32_MAX) {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(*number);
}

std::optional<std::int64_t> Number64(const picojson::value& json) {
    const auto version = json.is<std::string>() ? ParseVersion(json.get<std::string>()) : std::nullopt;
    return version ? std::optional(static_cast<std::int64_t>(*version)) : WholeNumber(json);
}

// Each sets the item when the value is one of its type, and says whether it was.

bool SetText(Item& item, velm::D3d9AdapterCheckCommand command, velm::D3d9AdapterParamCompare compare,
             const picojson::value& json) {
    if (!json.is<std::string>()) {
        return false;
    }
    const std::string& text = json.get<std::string>();
    item.SetAsString(command, compare, text.c_str());
    return text == item.AsString();  // neither cut at 127 bytes nor at a NUL
}

bool SetNumber(Item& item, velm::D3d9AdapterCheckCommand command, velm::D3d9AdapterParamCompare compare,
               velm::D3d9AdapterParamType type, const picojson::value& json) {
    if (type == velm::D3D9_ADAPTER_PARAM_INT64) {
        const auto number = Number64(json);
        item.SetAsInt64(command, compare, number.value_or(0));
        return number.has_value();
    }
    const auto number = Number32(json);
    if (type == velm::D3D9_ADAPTER_PARAM_DWORD) {
        item.SetAsDWORD(command, compare, number.value_or(0));
    } else {
        item.SetAsUINT(command, compare, number.value_or(0));
    }
    return number.has_value();
}

bool SetGuid(Item& item, velm::D3d9AdapterCheckCommand command, velm::D3d9AdapterParamCompare compare,
             const picojson::value& json) {
    const auto guid = json.is<std::string>() ? ParseGuid(json.get<std::string>()) : std::nullopt;
    item.SetAsGUID(command, compare, guid.value_or(GUID{}));
    return guid.has_value();
}

/// Throws RuleError, with the form that the type wants, when the value is not of it.
void SetValue(Item& item, velm::D3d9AdapterCheckCommand command, velm::D3d9AdapterParamCompare compare,
              velm::D3d9AdapterParamType type, const picojson::value& json) {
    switch (type) {
        case velm::D3D9_ADAPTER_PARAM_STRING:
            if (!SetText(item, command, compare, json)) {
                throw RuleError("wants a text of at most 127 bytes");
            }
            break;
        case velm::D3D9_ADAPTER_PARAM_GUID:
            if (!SetGuid(item, command, compare, json)) {
                throw RuleError("wants a text like \"{01234567-89AB-CDEF-0123-456789ABCDEF}\"");
            }
            break;
        case velm::D3D9_ADAPTER_PARAM_INT64:
            if (!SetNumber(item, command, compare, type, json)) {
                throw RuleError(
                    "wants a version like \"1.2.3.4\" or a whole number, from 2^53 on as \"0x...\"");
            }
            break;
        default:
            if (!SetNumber(item, command, compare, type, json)) {
                throw RuleError("wants a whole number from 0 to 4294967295, or the same as \"0x...\"");
            }
    }
}

/// The row of a table whose `name` the rule's member gives.
template <typename Row, std::size_t kRows>
const Row& Named(const Row (&table)[kRows], const picojson::value& name, const char* what) {
    if (!name.is<std::string>()) {
        throw RuleError(std::string("names its ") + what + " by something that is no text");
    }
    for (const Row& row : table) {
        if (row.name == name.get<std::string>()) {
            return row;
        }
    }
    throw RuleError("has an unknown " + std::string(what) + ' ' + Quoted(name.get<std::string>()));
}

AdapterRule ReadRule(const picojson::value& json) {
    const auto member = [&](const char* name) { return Member(json, name, {"fact", "is", "value"}); };
    const Command& command = Named(velm::kD3d9AdapterCommands, member("fact"), "fact");
    const Operator& is = Named(kOperators, member("is"), "operator");
    const picojson::value value = member("value");
    velm::D3d9AdapterParamType type{};
    velm::D3d9AdapterCheckSet::GetCommandType(&type, command.command);
    if (!Suits(is.compare, type)) {
        throw RuleError("compares " + std::string(command.name) + " by " + std::string(is.name) +
                        ", which does not suit it");
    }
    AdapterRule rule;
    rule.text = command.name + (' ' + std::string(is.name)) + ' ' + value.serialize();
    rule.item.reset(new Item);
    try {
        SetValue(*rule.item, command.command, is.compare, type, value);
    } catch (const RuleError& error) {
        throw RuleError("has a value that does not fit: " + std::string(command.name) + ' ' + error.what());
    }
    return rule;
}

}  // namespace

std::vector<AdapterRule> ReadAdapterRules(const std::string& text) {
    const picojson::value json = ParseJson(text);
    const picojson::value& list = Member(json, "rules", {"rules"});
    if (!list.is<picojson::array>()) {
        throw RuleError("has \"rules\" that are not a list");
    }
    std::vector<AdapterRule> rules;
    for (const picojson::value& rule : list.get<picojson::array>()) {
        try {
            rules.push_back(ReadRule(rule));
        } catch (const RuleError& error) {
            throw RuleError("rule " + std::to_string(rules.size() + 1) + ' ' + error.what());
        }
    }
    return rules;
}

const Command& CommandOf(Item& item) {
    return velm::kD3d9AdapterCommands[item.GetCommand()];
}

std::string FactText(const Command& command, const velm::D3d9AdapterContext& context) {
    const velm::D3d9AdapterFact fact = command.read(context);
    const auto bits = static_cast<std::uint64_t>(fact.number);
    char text[48] = "";
    switch (command.type) {
        case velm::D3D9_ADAPTER_PARAM_STRING:
            return fact.text;
        case velm::D3D9_ADAPTER_PARAM_GUID: {
            Item item;
            item.SetAsGUID(command.command, velm::D3D9_ADAPTER_COMPARE_EQUAL, fact.guid);
            return item.ValueToString();
        }
        case velm::D3D9_ADAPTER_PARAM_INT64:
            std::snprintf(text, sizeof text, "%u.%u.%u.%u", static_cast<unsigned int>(bits >> 48),
                          static_cast<unsigned int>(bits >> 32 & 0xFFFF),
                          static_cast<unsigned int>(bits >> 16 & 0xFFFF),
                          static_cast<unsigned int>(bits & 0xFFFF));
            return text;
        case velm::D3D9_ADAPTER_PARAM_DWORD:
            std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned int>(bits));
            return text;
        default:
            return std::to_string(fact.number);
    }
}

picojson::value FactValue(const Command& command, const velm::D3d9AdapterContext& context) {
    if (command.type == velm::D3D9_ADAPTER_PARAM_DWORD || command.type == velm::D3D9_ADAPTER_PARAM_UINT) {
        return picojson::value(static_cast<double>(command.read(context).number));
    }
    return picojson::value(FactText(command, context));
}

std::string HelpOnRules() {
    std::string text = "Facts:";
    for (const Command& command : velm::kD3d9AdapterCommands) {
        text += std::string(" ") + command.name;
    }
    text += "\nOperators:";
    for (const Operator& is : kOperators) {
        text += " " + std::string(is.name);
    }
    return text;
}

}  // namespace velmdiag
