#include "velm/UrlParser.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace velm {
namespace {

/// A query with at most this many "&" is inserted into the map as it is read.
constexpr std::ptrdiff_t kFew = 128;

struct Parameter {
    std::uint64_t prefix;  // the first 8 bytes of the name, as a number with the same order
    std::string_view name;
    std::string_view value;

    /// Orders by name, and equal names by their position in the query.
    bool operator<(const Parameter& other) const {
        if (prefix != other.prefix) {
            return prefix < other.prefix;
        }
        const int order = name.compare(other.name);
        return order != 0 ? order < 0 : name.data() < other.name.data();
    }
};

std::uint64_t PrefixOf(std::string_view name) {
    std::uint64_t prefix = 0;
    for (std::size_t i = 0; i < sizeof prefix; ++i) {
        prefix = prefix << 8 | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0U);
    }
    return prefix;
}

const char* FindEndOfNameOrValue(const char* begin, const char* end) {
    return std::find_if(begin, end, [](char c) { return c == '=' || c == '&'; });
}

}  // namespace

UrlParser::UrlParser() = default;
UrlParser::UrlParser(const UrlParser& other) = default;
UrlParser& UrlParser::operator=(const UrlParser& other) = default;
UrlParser::~UrlParser() = default;

ErrorCode UrlParser::Parse(const char* url) {
    ErrorCode result = ParseUrl(url);
    if (!result.IsFailed()) {
        result = ParseQuery();
    }
    if (result.IsFailed()) {
        Clear();
    }
    return result;
}

const char* UrlParser::Url() const {
    return m_strUrl.c_str();
}

const char* UrlParser::Scheme() const {
    return m_strScheme.c_str();
}

const char* UrlParser::Authority() const {
    return m_strAuthority.c_str();
}

const char* UrlParser::Path() const {
    return m_strPath.c_str();
}

const char* UrlParser::Query() const {
    return m_strQuery.c_str();
}

const char* UrlParser::Fragment() const {
    return m_strFragment.c_str();
}

const char* UrlParser::Param(const char* name) {
    return m_mapParam[name].c_str();
}

const std::map<std::string, std::string> UrlParser::ParamMap() const {
    return m_mapParam;
}

void UrlParser::DebugPrint() const {}

// The expression of RFC 3986, appendix B,
//
//     ^(([^:/?#]+):)?(//([^/?#]*))?([^?#]*)(\?([^#]*))?(#(.*))?
//
// must match the whole text. It is matched from left to right, and every optional part that is present is
// taken. A backtracking engine finds the same match: each part ends at a character that it cannot contain, so
// giving one up never helps the parts after it. Any text matches, unless the fragment contains a line
// terminator that "." excludes: only the fragment can contain what follows the first "#".
ErrorCode UrlParser::ParseUrl(const char* url) {
    if (url == nullptr) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    m_strUrl = url;
    std::string_view rest = m_strUrl;

    const std::size_t hash = rest.find('#');
    const std::string_view fragment = hash == rest.npos ? std::string_view() : rest.substr(hash + 1);
    if (fragment.find_first_of("\n\r") != fragment.npos) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    m_strFragment = fragment;
    rest = rest.substr(0, hash);

    const std::size_t question = rest.find('?');
    m_strQuery = question == rest.npos ? std::string_view() : rest.substr(question + 1);
    rest = rest.substr(0, question);

    const std::size_t schemeEnd = rest.find_first_of(":/");
    const bool hasScheme = schemeEnd != rest.npos && schemeEnd != 0 && rest[schemeEnd] == ':';
    m_strScheme = hasScheme ? rest.substr(0, schemeEnd) : std::string_view();
    rest.remove_prefix(hasScheme ? schemeEnd + 1 : 0);

    const bool hasAuthority = rest.starts_with("//");
    rest.remove_prefix(hasAuthority ? 2 : 0);
    m_strAuthority = hasAuthority ? rest.substr(0, rest.find('/')) : std::string_view();
    m_strPath = rest.substr(m_strAuthority.size());
    return 0;
}

ErrorCode UrlParser::ParseQuery() {
    m_mapParam.clear();
    if (m_strQuery.empty()) {
        return 0;
    }
    const std::ptrdiff_t separators = std::ranges::count(m_strQuery, '&');
    std::vector<Parameter> many;
    if (separators > kFew) {
        many.reserve(static_cast<std::size_t>(separators) + 1);
    }
    const char* const end = m_strQuery.data() + m_strQuery.size();
    for (const char* name = m_strQuery.data();;) {
        const char* const nameEnd = FindEndOfNameOrValue(name, end);
        if (nameEnd == end || *nameEnd == '&') {
            return VELM_ERROR_UTIL_INVALID_PARAM;
        }
        const char* const value = nameEnd + 1;
        const char* const valueEnd = FindEndOfNameOrValue(value, end);
        if (valueEnd != end && *valueEnd == '=') {
            return VELM_ERROR_UTIL_INVALID_PARAM;
        }
        if (separators > kFew) {
            const std::string_view text(name, nameEnd);
            many.push_back({PrefixOf(text), text, std::string_view(value, valueEnd)});
        } else {
            m_mapParam.insert_or_assign(m_mapParam.end(), std::string(name, nameEnd),
                                        std::string_view(value, valueEnd));
        }
        if (valueEnd == end) {
            break;
        }
        name = valueEnd + 1;
    }
    // Looking up each of many names in the map would miss the cache at almost every step. Sorted names are
    // appended without a search.
    std::sort(many.begin(), many.end());
    for (auto next = many.begin(); next != many.end(); ++next) {
        if (next + 1 == many.end() || next[1].name != next->name) {
            m_mapParam.emplace_hint(m_mapParam.end(), next->name, next->value);
        }
    }
    return 0;
}

void UrlParser::Clear() {
    for (std::string* const part :
         {&m_strUrl, &m_strScheme, &m_strAuthority, &m_strPath, &m_strQuery, &m_strFragment}) {
        part->clear();
    }
    m_mapParam.clear();
}

}  // namespace velm
