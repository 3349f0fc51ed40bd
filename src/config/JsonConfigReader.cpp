#include "velm/JsonConfigReader.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

#include "config/JsonParser.h"

namespace velm {
namespace {

constexpr int kOpenFailed = 1;
constexpr int kReadFailed = 1;

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, CloseFile>;

/// Appends a file to `text`; returns false if reading fails.
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

}  // namespace

JsonConfigReader::JsonConfigReader() = default;
JsonConfigReader::JsonConfigReader(const JsonConfigReader&) = default;
JsonConfigReader& JsonConfigReader::operator=(const JsonConfigReader&) = default;
JsonConfigReader::~JsonConfigReader() = default;

int JsonConfigReader::ReadFile(const std::string& path) {
    // Binary mode: JoinLines does what text mode does on Windows, but faster and on every system.
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
    ParseJson(m_strJson, value, error);
    return error.empty();
}

}  // namespace velm
