#include "config/JsonParser.h"

#include "config/JsonNumber.h"

namespace velm {
namespace {

using JsonInput = picojson::input<const char*>;

constexpr int kDeepest = picojson::DEFAULT_MAX_DEPTHS;

/// Consumes all characters that may belong to a number. Returns nothing if they do not form one.
std::optional<double> ReadNumber(JsonInput& in) {
    const char* const begin = in.cur();
    int c = 0;
    do {
        c = in.getc();
    } while ((c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.' || c == 'e' || c == 'E');
    in.ungetc();
    return ParseJsonNumber({begin, static_cast<std::size_t>(in.cur() - begin)});
}

/// The state shared by all levels of a parse.
struct JsonResult {
    picojson::value before;  ///< the caller's value before the parse
    bool tooDeep = false;
};

/// Parses a value into its destination. It is the parse context of picojson's functions for arrays and
/// objects.
class JsonTarget {
public:
    JsonTarget(picojson::value& out, int depth, JsonResult& result)
        : m_out(out), m_depth(depth), m_result(result) {}

    bool Parse(JsonInput& in) {
        in.skip_ws();
        const int first = in.getc();
        switch (first) {
            case 'n':
                return in.match("ull") && Set(picojson::value());
            case 'f':
                return in.match("alse") && Set(picojson::value(false));
            case 't':
                return in.match("rue") && Set(picojson::value(true));
            case '"':
                Set(picojson::value(picojson::string_type, false));
                return picojson::_parse_string(m_out.get<std::string>(), in);
            case '[':
                return picojson::_parse_array(*this, in);
            case '{':
                return picojson::_parse_object(*this, in);
            default:
                in.ungetc();
                return (first == '-' || (first >= '0' && first <= '9')) && ParseNumber(in);
        }
    }

    bool parse_array_start() { return Open(picojson::array_type); }
    bool parse_array_item(JsonInput& in, std::size_t) {
        auto& items = m_out.get<picojson::array>();
        items.emplace_back();
        return JsonTarget(items.back(), m_depth + 1, m_result).Parse(in);
    }
    bool parse_array_stop(std::size_t) { return true; }

    bool parse_object_start() { return Open(picojson::object_type); }
    bool parse_object_item(JsonInput& in, const std::string& key) {
        return JsonTarget(m_out.get<picojson::object>()[key], m_depth + 1, m_result).Parse(in);
    }
    bool parse_object_stop() { return true; }

private:
    bool ParseNumber(JsonInput& in) {
        const std::optional<double> number = ReadNumber(in);
        return number.has_value() && Set(picojson::value(*number));
    }

    bool Open(int type) {
        m_result.tooDeep = m_depth == kDeepest;
        return !m_result.tooDeep && Set(picojson::value(type, false));
    }

    bool Set(picojson::value value) {
        if (m_depth == 0) {
            m_result.before.swap(m_out);
        }
        m_out.swap(value);
        return true;
    }

    picojson::value& m_out;
    const int m_depth;
    JsonResult& m_result;
};

/// Builds picojson's message for an error at the current position.
std::string MakeSyntaxError(JsonInput& in) {
    std::string error = "syntax error at line " + std::to_string(in.line()) + " near: ";
    for (int c = in.getc(); c != -1 && c != '\n'; c = in.getc()) {
        if (c >= ' ') {
            error.push_back(static_cast<char>(c));
        }
    }
    return error;
}

}  // namespace

void ParseJson(std::string_view text, picojson::value& value, std::string& error) {
    JsonInput in(text.data(), text.data() + text.size());
    JsonResult result;
    if (!JsonTarget(value, 0, result).Parse(in)) {
        error = MakeSyntaxError(in);
    }
    if (result.tooDeep) {
        value.swap(result.before);
    }
}

}  // namespace velm
