#include "velm/JsonConfigReader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "RandomSeed.h"
#include "TemporaryFile.h"

namespace velm {
namespace {

/// The value, written out, or what is wrong.
std::string Parse(JsonConfigReader& reader) {
    picojson::value value;
    std::string error;
    return reader.getJsonValue(value, error) ? value.serialize() : error;
}

std::string ParseText(const std::string& text) {
    JsonConfigReader reader;
    EXPECT_EQ(reader.Read(text), 0);
    return Parse(reader);
}

std::string PicojsonsAnswer(const std::string& text) {
    picojson::value value;
    std::string error;
    picojson::parse(value, text.begin(), text.end(), &error);
    return error.empty() ? value.serialize() : error;
}

std::string Repeat(const std::string& text, int count) {
    std::string repeated;
    for (int i = 0; i < count; ++i) {
        repeated += text;
    }
    return repeated;
}

const std::string kError = "syntax error at line 1 near: ";

TEST(JsonConfigReader, FilesAreReadAsTheirLinesJoined) {
    for (const auto& [content, answer] : {std::pair<std::string, std::string>{"[1\n2]\n", "[12]"},
                                          {"[1\r\n2]", "[12]"},
                                          {"[1\r2]", kError + "2]"},  // a CR alone is a blank
                                          {"[\"a\r\r\nb\"]", kError + "b\"]"},
                                          {"\xEF\xBB\xBF[1]", "[1]"},
                                          {"\xEF\xBB", kError + "\xEF\xBB"},
                                          {"\n\xEF\xBB\xBF[1]", kError + "\xEF\xBB\xBF[1]"},
                                          {"[1\x1A]", kError},
                                          {"", kError}}) {
        const test::TemporaryFile file("file.json", content);
        JsonConfigReader reader;
        ASSERT_EQ(reader.ReadFile(file.Name()), 0);
        EXPECT_EQ(Parse(reader), answer) << testing::PrintToString(content);
    }
}

TEST(JsonConfigReader, UnreadableFilesKeepTheTextHeld) {
    JsonConfigReader reader;
    reader.Read("[1]");
    EXPECT_EQ(reader.ReadFile("none.json"), 1);
    EXPECT_EQ(Parse(reader), "[1]");
    EXPECT_EQ(reader.ReadFile(std::filesystem::current_path().string()), 1);
}

TEST(JsonConfigReader, WhatFollowsIsIgnoredAndNoNumberIsInfinite) {
    for (const auto& [text, answer] :
         {std::pair<std::string, std::string>{"{} word", "{}"},
          {"1 " + Repeat("[", 200), "1"},
          {"[1] " + Repeat("{\"a\":", 200), "[1]"},
          {"[1,\n{\"a\": 1e999, \"b\": 2}]", "syntax error at line 2 near: , \"b\": 2}]"},
          {"[{}, -1e999, 1]", kError + ", 1]"},
          {"-1e999", kError}}) {
        EXPECT_EQ(ParseText(text), answer) << text;
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
    reader.Read(Repeat("[{\"a\":", 100));
    EXPECT_FALSE(reader.getJsonValue(value, error));
    EXPECT_EQ(error, kError + "{\"a\":" + Repeat("[{\"a\":", 49)) << "behind the bracket of level 101";
    EXPECT_EQ(value.serialize(), "[1]") << "too deep a text is not parsed";
    EXPECT_EQ(ParseText("[1 2\n" + Repeat("[", 200)), kError + "2") << "an error ahead of that bracket";
}

TEST(JsonConfigReader, RandomTextsGetPicojsonsAnswer) {
    std::mt19937 random = test::SeededRandom();
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
        ASSERT_EQ(ParseText(text), PicojsonsAnswer(text)) << text;
    }
}

}  // namespace
}  // namespace velm
