#include "velm/JsonConfigReader.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <new>
#include <string_view>

namespace velm {
namespace {

constexpr int kOpenFailed = 1;
constexpr int kReadFailed = 1;

/// Appends a file to `text`; false when reading fails.
bool ReadAll(std::istream& file, std::string& text) {
    constexpr std::size_t kChunk = 1 << 16;
    while (file) {
        const std::size_t size = text.size();
        text.resize(size + kChunk);
        file.read(&text[size], kChunk);
        text.resize(size + static_cast<std::size_t>(file.gcount()));
    }
    return !file.bad();
}

/// Leaves of a file's bytes what JsonConfigReader::ReadFile promises.
void JoinLines(std::string& text) {
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    constexpr char kEndOfText = '\x1A';
    text.resize(std::min(text.find(kEndOfText), text.size()));
    char* out = text.data();
    const char* in = out + (std::string_view(text).substr(0, kMark.size()) == kMark ? kMark.size() : 0);
    const char* const end = out + text.size();
    while (in != end) {
        const auto* const lineFeed =
            static_cast<const char*>(std::memchr(in, '\n', static_cast<std::size_t>(end - in)));
        const char* lineEnd = lineFeed != nullptr ? lineFeed : end;
        const char* const next = lineFeed != nullptr ? lineFeed + 1 : end;
        if (lineFeed != nullptr && lineEnd != in && lineEnd[-1] == '\r') {
            --lineEnd;
        }
        std::memmove(out, in, static_cast<std::size_t>(lineEnd - in));
        out += lineEnd - in;
        in = next;
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
}

/// The end of the string that begins at `quote`: its closing quote, or the end of the text.
const char* EndOfString(const char* quote, const char* end) {
    const char* next = quote + 1;
    while (next < end && *next != '"') {
        next += *next == '\\' ? 2 : 1;
    }
    return std::min(next, end);
}

/// The first bracket of the first value in a text that is nested deeper than picojson follows arrays, or
/// null.
///
/// The parser goes down at an opening bracket outside a string and up at a closing one. Up to its first error
/// all brackets match, so counting both kinds alike gives its depth; beyond, this may find a bracket that the
/// parser would not have come to, in a text that is refused in any case.
const char* FindTooDeep(const std::string& text) {
    const char* next = text.data() + std::min(text.find_first_not_of(" \t\r\n"), text.size());
    const char* const end = text.data() + text.size();
    if (next == end || (*next != '[' && *next != '{')) {
        return nullptr;
    }
    int depth = 0;
    for (; next < end; ++next) {
        switch (*next) {
            case '[':
            case '{':
                if (++depth > picojson::DEFAULT_MAX_DEPTHS) {
                    return next;
                }
                break;
            case ']':
            case '}':
                if (--depth == 0) {
                    return nullptr;
                }
                break;
            case '"':
                next = EndOfString(next, end);
                break;
            default:
                break;
        }
    }
    return nullptr;
}

/// What picojson says of an error that it meets after `where`.
std::string SyntaxErrorAfter(const std::string& text, const char* where) {
    const char* const end = text.data() + text.size();
    std::string error =
        "syntax error at line " + std::to_string(1 + std::count(text.data(), where, '\n')) + " near: ";
    std::copy_if(where + 1, std::find(where + 1, end, '\n'), std::back_inserter(error),
                 [](char c) { return static_cast<unsigned char>(c) >= ' '; });
    return error;
}

}  // namespace

JsonConfigReader::JsonConfigReader() = default;
JsonConfigReader::JsonConfigReader(const JsonConfigReader&) = default;
JsonConfigReader& JsonConfigReader::operator=(const JsonConfigReader&) = default;
JsonConfigReader::~JsonConfigReader() = default;

int JsonConfigReader::ReadFile(const std::string& path) {
    // Windows' text mode is done here and not by the stream, so that it is the same on every system, and
    // fast.
    std::ifstream file(path, std::ios::binary);
    if (!file.is_open()) {
        return kOpenFailed;
    }
    m_strJson.clear();
    try {
        const bool complete = ReadAll(file, m_strJson);
        JoinLines(m_strJson);
        return complete ? 0 : kReadFailed;
    } catch (const std::bad_alloc&) {
        return kReadFailed;
    }
}

int JsonConfigReader::Read(const std::string& json) {
    m_strJson = json;
    return 0;
}

bool JsonConfigReader::getJsonValue(picojson::value& value, std::string& error) {
    // picojson recurses into both kinds of brackets but limits the depth of arrays only.
    if (const char* const tooDeep = FindTooDeep(m_strJson)) {
        error = SyntaxErrorAfter(m_strJson, tooDeep);
        return false;
    }
    picojson::parse(value, m_strJson.cbegin(), m_strJson.cend(), &error);
    return error.empty();
}

}  // namespace velm
