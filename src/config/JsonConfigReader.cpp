#include "velm/JsonConfigReader.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>

#include "JsonNesting.h"

namespace velm {
namespace {

constexpr int kOpenFailed = 1;
constexpr int kReadFailed = 1;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

/// Appends a file to `text`; false when reading fails.
bool ReadAll(std::FILE* file, std::string& text) {
    constexpr std::size_t kChunk = 1 << 16;
    constexpr long kMostReserved = 1 << 26;
    if (std::fseek(file, 0, SEEK_END) == 0) {  // a pipe has no size and cannot seek
        const long size = std::ftell(file);
        std::rewind(file);
        text.reserve(static_cast<std::size_t>(std::clamp(size, 0L, kMostReserved)) + kChunk);
    }
    std::size_t got = 0;
    do {
        const std::size_t held = text.size();
        text.resize(held + kChunk);
        got = std::fread(&text[held], 1, kChunk, file);
        text.resize(held + got);
    } while (got != 0);
    return std::ferror(file) == 0;
}

/// Joins the lines of a file as JsonConfigReader::ReadFile describes.
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
        if (out != in) {
            std::memmove(out, in, static_cast<std::size_t>(lineEnd - in));
        }
        out += lineEnd - in;
        in = next;
    }
    text.resize(static_cast<std::size_t>(out - text.data()));
}

/// What picojson says of an error that it meets after the byte at `where`.
std::string SyntaxErrorAfter(const std::string& text, std::size_t where) {
    const auto next = text.begin() + static_cast<std::ptrdiff_t>(where) + 1;
    std::string error =
        "syntax error at line " + std::to_string(1 + std::count(text.begin(), next, '\n')) + " near: ";
    std::copy_if(next, std::find(next, text.end(), '\n'), std::back_inserter(error),
                 [](char c) { return static_cast<unsigned char>(c) >= ' '; });
    return error;
}

/// Parses without a result, up to an error or the first number that no double holds. picojson ignores what
/// becomes of a number, so it is looked at where the number stands.
struct UpToOverflow {
    bool overflowed = false;

    bool set_null() { return true; }
    bool set_bool(bool) { return true; }
    bool set_number(double number) {
        overflowed = overflowed || !std::isfinite(number);
        return true;
    }
    template <typename Iterator>
    bool parse_string(picojson::input<Iterator>& in) {
        std::string ignored;
        return picojson::_parse_string(ignored, in);
    }
    bool parse_array_start() { return true; }
    template <typename Iterator>
    bool parse_array_item(picojson::input<Iterator>& in, std::size_t) {
        return picojson::_parse(*this, in) && !overflowed;
    }
    bool parse_array_stop(std::size_t) { return true; }
    bool parse_object_start() { return true; }
    template <typename Iterator>
    bool parse_object_item(picojson::input<Iterator>& in, const std::string&) {
        return picojson::_parse(*this, in) && !overflowed;
    }
    bool parse_object_stop() { return true; }
};

/// The last byte that parsing the text's first `size` bytes takes: that of the first number that is too
/// large, of an error or of what is there.
std::size_t FindStop(const std::string& text, std::size_t size) {
    UpToOverflow context;
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(size);
    const auto stop = picojson::_parse(context, text.begin(), end, nullptr);
    return static_cast<std::size_t>(stop - text.begin()) - 1;
}

}  // namespace

JsonConfigReader::JsonConfigReader() = default;
JsonConfigReader::JsonConfigReader(const JsonConfigReader&) = default;
JsonConfigReader& JsonConfigReader::operator=(const JsonConfigReader&) = default;
JsonConfigReader::~JsonConfigReader() = default;

int JsonConfigReader::ReadFile(const std::string& path) {
    // Binary mode: JoinLines does what Windows' text mode does, faster and on every system.
    const File file(std::fopen(path.c_str(), "rb"));
    if (file == nullptr) {
        return kOpenFailed;
    }
    m_strJson.clear();
    bool complete = false;
    try {
        complete = ReadAll(file.get(), m_strJson);
    } catch (const std::bad_alloc&) {
        // treated like a failed read
    }
    JoinLines(m_strJson);
    return complete ? 0 : kReadFailed;
}

int JsonConfigReader::Read(const std::string& json) {
    m_strJson = json;
    return 0;
}

bool JsonConfigReader::getJsonValue(picojson::value& value, std::string& error) {
    // picojson recurses into both kinds of brackets but limits the depth of arrays only.
    const std::size_t tooDeep = FindTooDeep(m_strJson, picojson::DEFAULT_MAX_DEPTHS);
    if (tooDeep != m_strJson.npos) {
        error = SyntaxErrorAfter(m_strJson, FindStop(m_strJson, tooDeep + 1));
        return false;
    }
    try {
        picojson::parse(value, m_strJson.cbegin(), m_strJson.cend(), &error);
    } catch (const std::overflow_error&) {
        error = SyntaxErrorAfter(m_strJson, FindStop(m_strJson, m_strJson.size()));
    }
    return error.empty();
}

}  // namespace velm
