#include "graphics/AdapterRuleReader.h"

#include <algorithm>
#include <iterator>

#include "graphics/AdapterRuleValue.h"

namespace velm {
namespace {

constexpr struct RuleOperator {
    std::string_view name;
    D3d9AdapterParamCompare compare;
} kRuleOperators[] = {
    {"==", D3D9_ADAPTER_COMPARE_EQUAL},        {"!=", D3D9_ADAPTER_COMPARE_NOT_EQUAL},
    {">", D3D9_ADAPTER_COMPARE_GREATER},       {">=", D3D9_ADAPTER_COMPARE_GREATER_EQUAL},
    {"<=", D3D9_ADAPTER_COMPARE_LESS_EQUAL},   {"<", D3D9_ADAPTER_COMPARE_LESS},
    {"has-any", D3D9_ADAPTER_COMPARE_AND_ANY}, {"has-none", D3D9_ADAPTER_COMPARE_AND_NONE},
};

bool Suits(D3d9AdapterParamCompare compare, D3d9AdapterParamType type) {
    switch (type) {
        case D3D9_ADAPTER_PARAM_GUID:
            return compare <= D3D9_ADAPTER_COMPARE_NOT_EQUAL;
        case D3D9_ADAPTER_PARAM_STRING:
            return compare <= D3D9_ADAPTER_COMPARE_LESS;
        default:
            return true;
    }
}

/// Finds a table's row by name; null if there is none.
template <typename Row, std::size_t kRows>
const Row* FindNamed(const Row (&table)[kRows], const AdapterRuleToken& name) {
    const auto row =
        std::find_if(std::begin(table), std::end(table), [&](const Row& r) { return r.name == name.text; });
    return name.kind == '"' && row != std::end(table) ? row : nullptr;
}

/// Formats a token for an error message: as written, shortened if long. Tokens contain no line breaks.
std::string Shown(const AdapterRuleToken& token) {
    constexpr std::size_t kShown = 60;
    std::size_t size = std::min(token.raw.size(), kShown);
    while (size < token.raw.size() && (static_cast<unsigned char>(token.raw[size]) & 0xC0) == 0x80 &&
           size > 0) {
        --size;  // do not cut a character in two
    }
    return std::string(token.raw.substr(0, size)) + (size < token.raw.size() ? "..." : "");
}

class RuleReader {
public:
    RuleReader(std::string_view text, std::vector<AdapterRule>& rules, AdapterRuleError& error)
        : m_tokens(text, error), m_rules(rules) {}

    bool Read() {
        bool isThere = false;
        const bool isRead =
            m_tokens.Next() && ReadObject([&](const AdapterRuleToken& name) {
                if (name.text != "rules" || isThere) {
                    return Fail(name, (isThere ? "unexpected member " : "unknown member ") + Shown(name));
                }
                isThere = true;
                return ReadList();
            });
        if (!isRead) {
            return false;
        }
        if (Kind() != '\0') {
            return Fail(m_tokens.Current(), "text after the end of the rules");
        }
        return isThere || Fail(m_tokens.Current(), "no member \"rules\"");
    }

private:
    char Kind() const { return m_tokens.Current().kind; }

    bool Fail(const AdapterRuleToken& at, const std::string& message) {
        return m_tokens.Fail(
            at.raw.data(),
            m_isInRule ? "rule " + std::to_string(m_rules.size() + 1) + ": " + message : message);
    }

    bool Take(char kind) {
        return Kind() == kind ? m_tokens.Next() : Fail(m_tokens.Current(), std::string("expected ") + kind);
    }

    /// @param read  called with each member's name, to read its value
    template <typename Read>
    bool ReadObject(Read read) {
        if (!Take('{')) {
            return false;
        }
        if (Kind() == '}') {
            return m_tokens.Next();
        }
        for (;;) {
            const AdapterRuleToken name = m_tokens.Current();
            if (!Take('"') || !Take(':') || !read(name)) {
                return false;
            }
            if (Kind() != ',') {
                return Take('}');
            }
            if (!m_tokens.Next()) {
                return false;
            }
        }
    }

    bool ReadList() {
        if (!Take('[')) {
            return false;
        }
        if (Kind() == ']') {
            return m_tokens.Next();
        }
        for (;;) {
            m_isInRule = true;
            if (!ReadRule()) {
                return false;
            }
            m_isInRule = false;
            if (Kind() != ',') {
                return Take(']');
            }
            if (!m_tokens.Next()) {
                return false;
            }
        }
    }

    bool ReadRule() {
        constexpr std::string_view kMembers[] = {"fact", "is", "value"};
        const AdapterRuleToken begin = m_tokens.Current();
        AdapterRuleToken parts[std::size(kMembers)];
        const bool isRead = ReadObject([&](const AdapterRuleToken& name) {
            const auto member = std::find(std::begin(kMembers), std::end(kMembers), name.text);
            if (member == std::end(kMembers)) {
                return Fail(name, "unknown member " + Shown(name));
            }
            AdapterRuleToken& part = parts[member - kMembers];
            if (part.kind != '\0') {
                return Fail(name, "second member " + Shown(name));
            }
            part = m_tokens.Current();
            return part.kind == '"' || part.kind == '0' ? m_tokens.Next()
                                                        : Fail(part, "expected a string or a number");
        });
        for (std::size_t i = 0; isRead && i < std::size(kMembers); ++i) {
            if (parts[i].kind == '\0') {
                return Fail(begin, "no member \"" + std::string(kMembers[i]) + '"');
            }
        }
        return isRead && AddRule(parts[0], parts[1], parts[2]);
    }

    bool AddRule(const AdapterRuleToken& fact, const AdapterRuleToken& is, const AdapterRuleToken& value) {
        const D3d9AdapterCommand* const command = FindNamed(kD3d9AdapterCommands, fact);
        if (command == nullptr) {
            return Fail(fact, "unknown fact " + Shown(fact));
        }
        const RuleOperator* const compare = FindNamed(kRuleOperators, is);
        if (compare == nullptr) {
            return Fail(is, "unknown operator " + Shown(is));
        }
        if (!Suits(compare->compare, command->type)) {
            return Fail(is, std::string(command->name) + " does not have the operator " + Shown(is));
        }
        const std::tr1::shared_ptr<D3d9AdapterCheckItem> item(new D3d9AdapterCheckItem);
        if (const char* const need = SetAdapterRuleValue(*item, *command, compare->compare, value)) {
            return Fail(value, std::string(command->name) + " needs " + need);
        }
        std::string text = command->name;
        text.append(1, ' ').append(compare->name).append(1, ' ').append(value.raw);
        m_rules.push_back({std::move(text), item});
        return true;
    }

    AdapterRuleTokens m_tokens;
    std::vector<AdapterRule>& m_rules;
    bool m_isInRule = false;
};

}  // namespace

bool ReadAdapterRules(std::string_view text, std::vector<AdapterRule>& rules, AdapterRuleError& error) {
    return RuleReader(text, rules, error).Read();
}

}  // namespace velm
