#include "velm/JsonConfigReader.h"

#include <gtest/gtest.h>

#include <random>

#include "File.h"

namespace velm {
namespace {

struct Parsed {
    bool ok = false;
    std::string error;
    std::string json;  // the value, written out
};

Parsed Parse(JsonConfigReader& reader) {
    Parsed parsed;
    picojson::value value;
    parsed.ok = reader.getJsonValue(value, parsed.error);
    parsed.json = value.serialize();
    return parsed;
}

Parsed ParseText(const std::string& text) {
    JsonConfigReader reader;
    EXPECT_EQ(reader.Read(text), 0);
    return Parse(reader);
}

Parsed PicojsonsAnswer(const std::string& text) {
    Parsed parsed;
    picojson::value value;
    picojson::parse(value, text.begin(), text.end(), &parsed.error);
    parsed.ok = parsed.error.empty();
    parsed.json = value.serialize();
    return parsed;
}

std::string Repeat(const std::string& text, int count) {
    std::string repeated;
    for (int i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

std::string operator""_s(const char* text, std::size_t size) {
    return {text, size};
}

TEST(JsonConfigReader, FilesAreReadAsTheirLinesJoined) {
    const std::string nothing = "syntax error at line 1 near: ";
    const struct {
        std::string file;
        std::string json;  // the value, or what is wrong
    } rows[] = {
        {"{\n\"a\": 1\n}\n", "{\"a\":1}"},
        {"[1\n2]\n", "[12]"},
        {"[1\r\n2]", "[12]"},
        {"[1\r2]", nothing + "2]"},  // a CR alone is a blank
        {"[\"a\r\r\nb\"]", nothing + "b\"]"},
        {"\xEF\xBB\xBF[1]", "[1]"},
        {"\xEF\xBB\xBF", nothing},
        {"\xEF\xBB", nothing + "\xEF\xBB"},
        {"\n\xEF\xBB\xBF[1]", nothing + "\xEF\xBB\xBF[1]"},
        {"[1,\n\xEF\xBB\xBF"
         "2]",
         nothing + "\xEF\xBB\xBF"
                   "2]"},
        {"[1]\x1A garbage", "[1]"},
        {"[1\x1A]", nothing},
        {"", nothing},
        {"\r\n\n", nothing},
        {"[1,\n2,\nx]\n", nothing + "x]"},
        {"\0\x01\xFF\x7F\x1B\n\0ELF"_s, nothing + "\xFF\x7F" + "ELF"},
    };
    for (const auto& row : rows) {
        JsonConfigReader reader;
        ASSERT_EQ(reader.ReadFile(WriteFile("file.json", row.file)), 0);
        const Parsed parsed = Parse(reader);
        EXPECT_EQ(parsed.ok ? parsed.json : parsed.error, row.json) << testing::PrintToString(row.file);
    }
}

TEST(JsonConfigReader, UnreadableFilesKeepTheTextHeld) {
    JsonConfigReader reader;
    reader.Read("[1]");
    EXPECT_EQ(reader.ReadFile("none.json"), 1);
    EXPECT_EQ(Parse(reader).json, "[1]");
    EXPECT_EQ(reader.ReadFile(std::filesystem::current_path().string()), 1);
    JsonConfigReader copy(reader);
    reader.Read("[2]");
    EXPECT_EQ(Parse(reader).json, "[2]");
    copy = reader;
    EXPECT_EQ(Parse(copy).json, "[2]");
}

TEST(JsonConfigReader, TextsKeepTheirLinesAndWhatFollowsIsIgnored) {
    const struct {
        std::string text;
        std::string json;
    } rows[] = {
        {"{} word", "{}"},
        {"1 " + Repeat("[", 200), "1"},
        {"[1] " + Repeat("{\"a\":", 200), "[1]"},
        {"[\"" + Repeat("[{", 200) + "\\\"" + Repeat("[", 200) + "\"]",
         "[\"" + Repeat("[{", 200) + "\\\"" + Repeat("[", 200) + "\"]"},
        {"[1,\nx\x01\ty]\nz", "syntax error at line 2 near: xy]"},
        {"", "syntax error at line 1 near: "},
        {"[1,\n{\"a\": 1e999, \"b\": 2}]", "syntax error at line 2 near: , \"b\": 2}]"},  // beyond a double
        {"-1e999", "syntax error at line 1 near: "},
    };
    for (const auto& row : rows) {
        const Parsed parsed = ParseText(row.text);
        EXPECT_EQ(parsed.ok ? parsed.json : parsed.error, row.json) << row.text;
    }
}

TEST(JsonConfigReader, AnErrorOnEntryIsNeverASuccess) {
    JsonConfigReader reader;
    picojson::value value;
    std::string error = "x";
    reader.Read("[1]");
    EXPECT_FALSE(reader.getJsonValue(value, error));
    EXPECT_EQ(error, "x");
    EXPECT_EQ(value.serialize(), "[1]");
    reader.Read(Repeat("{\"a\":", 200));
    EXPECT_FALSE(reader.getJsonValue(value, error));
    EXPECT_EQ(error, "syntax error at line 1 near: " + Repeat("\"a\":{", 99) + "\"a\":");
    EXPECT_EQ(value.serialize(), "[1]") << "too deep a text is not parsed";
}

TEST(JsonConfigReader, DeepNestingOverflowsNoStack) {
    const struct {
        std::string open;
        std::string inner;
        std::string close;
    } rows[] = {{"[", "1", "]"}, {"{\"a\":", "1", "}"}, {"[{\"a\":", "1", "}]"}, {"\n[ ", "", "]"}};
    for (const auto& row : rows) {
        const int levels = row.open.starts_with("[{") ? 50 : 100;
        const auto text = [&](int count) {
            return Repeat(row.open, count) + row.inner + Repeat(row.close, count);
        };
        EXPECT_TRUE(ParseText(text(levels)).ok) << row.open;
        for (const int count : {levels + 1, 100000}) {
            const Parsed parsed = ParseText(text(count));
            EXPECT_FALSE(parsed.ok);
            const std::string start =
                row.open[0] == '\n' ? "syntax error at line 102 near: " : "syntax error at line 1 near: ";
            EXPECT_EQ(parsed.error.substr(0, start.size()), start);
            if (row.open.find('{') == row.open.npos) {
                EXPECT_EQ(parsed.error, PicojsonsAnswer(text(count)).error)
                    << "picojson's own words for arrays";
            }
        }
    }
}

TEST(JsonConfigReader, RandomTextsGetPicojsonsAnswer) {
    const unsigned int seed = std::random_device()();
    std::mt19937 random(seed);
    const std::string any[] = {"[", "]", "{",  "}", "\"",     "\\",      ",",
                               ":", "1", "\n", " ", "\"a\":", "\\u00e9", "null"};
    const std::string inString[] = {"[[[[", "{{{{", "]", "}", "\\\\", "\\\"", "x", "\\n"};
    for (int i = 0; i < 20000; ++i) {
        std::string text = "[";
        if (i % 2 == 0) {
            for (auto left = random() % 40; left != 0; --left) {
                text += any[random() % std::size(any)];
            }
        } else {  // brackets in strings of all lengths, then arrays that are just deep enough or too deep
            for (auto strings = random() % 8; strings != 0; --strings) {
                text += '"';
                for (auto left = random() % 100; left != 0; --left) {
                    text += inString[random() % std::size(inString)];
                }
                text += "\",";
            }
            const int levels = 99 + i / 2 % 2;
            text += Repeat("[", levels) + Repeat("]", levels) + "]";
        }
        const Parsed parsed = ParseText(text);
        const Parsed expected = PicojsonsAnswer(text);
        ASSERT_EQ(parsed.error, expected.error) << "seed " << seed << ": " << text;
        if (parsed.ok) {
            ASSERT_EQ(parsed.json, expected.json) << "seed " << seed << ": " << text;
        }
    }
}

}  // namespace
}  // namespace velm
