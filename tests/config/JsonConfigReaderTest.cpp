#include "velm/JsonConfigReader.h"

#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "Random.h"
#include "TemporaryFile.h"

namespace velm::json_config_reader_test {

/// The value as text, or the error.
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

TEST(JsonConfigReader, ReadsFilesAsJoinedLines) {
    JsonConfigReader reader;
    for (const auto& [content, answer] : {std::pair<std::string, std::string>{"[1\n2]\n", "[12]"},
                                          {"[1\r\n2]", "[12]"},
                                          {"[1\r2]", kError + "2]"},  // a lone CR is white space
                                          {"[\"a\r\r\nb\"]", kError + "b\"]"},
                                          {"\xEF\xBB\xBF[1]", "[1]"},
                                          {"\xEF\xBB", kError + "\xEF\xBB"},
                                          {"\n\xEF\xBB\xBF[1]", kError + "\xEF\xBB\xBF[1]"},
                                          {"[1\x1A]", kError},
                                          {"", kError}}) {
        const test::TemporaryFile file("file.json", content);
        ASSERT_EQ(reader.ReadFile(file.Name()), 0);
        EXPECT_EQ(Parse(reader), answer) << testing::PrintToString(content);
    }
}

TEST(JsonConfigReader, KeepsItsTextIfTheFileCannotOpen) {
    JsonConfigReader reader;
    reader.Read("[1]");
    EXPECT_EQ(reader.ReadFile("none.json"), 1);
    EXPECT_EQ(Parse(reader), "[1]");
    EXPECT_EQ(reader.ReadFile(std::filesystem::current_path().string()), 1);
}

TEST(JsonConfigReader, IgnoresTrailingTextAndRejectsInfinity) {
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

/// The bits of the double that the reader makes of a number.
std::uint64_t ReadBits(const std::string& text) {
    JsonConfigReader reader;
    picojson::value value;
    std::string error;
    reader.Read(text);
    EXPECT_TRUE(reader.getJsonValue(value, error)) << error;
    return value.is<double>() ? std::bit_cast<std::uint64_t>(value.get<double>()) : ~std::uint64_t{0};
}

TEST(JsonConfigReader, ReadsLongNumbersExactlyAndFast) {
    const auto begin = std::chrono::steady_clock::now();
    const std::string zeros(100'000, '0');
    const std::pair<std::string, double> rows[] = {{std::string(100'000, '9') + "e-100000", 1},
                                                   {"-1" + zeros + "e-100000", -1},
                                                   {"0." + zeros + "1e+100001", 1},
                                                   {"0." + std::string(1'000'000, '1'), 0x1.c71c71c71c71cp-4},
                                                   {"2.4703282292062327e-324", 0},
                                                   {"2.4703282292062328e-324", 0x1p-1074},
                                                   {"1.7976931348623158e308", 0x1.fffffffffffffp1023},
                                                   {"-0." + zeros + "1e50000", -0.0},
                                                   {"0.1e-99999999999999999999", 0},
                                                   {"0e99999999999999999999", 0}};
    for (const auto& [text, value] : rows) {
        EXPECT_EQ(ReadBits(text), std::bit_cast<std::uint64_t>(value)) << text.substr(0, 30);
    }
    EXPECT_EQ(ParseText("[1" + zeros + "e-99000, 2]"), kError + ", 2]");
    EXPECT_EQ(ParseText("[1e99999999999999999999]"), kError + "]");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2))
        << "a quadratic parser takes 43 s";
}

// Where a long double is longer than a double, it holds the midpoint of two doubles, which has up to 767
// digits.
TEST(JsonConfigReader, RoundsNumbersToTheNearestDouble) {
    std::mt19937_64 random(test::SeededRandom()());
    for (int i = 0; i < 2000 / VELM_TEST_SLOWDOWN; ++i) {
        const std::uint64_t low = random() % 0x7FEFFFFFFFFFFFFF >> (i % 8 == 0 ? 12 : 0);
        const auto middle = (static_cast<long double>(std::bit_cast<double>(low)) +
                             static_cast<long double>(std::bit_cast<double>(low + 1))) /
                            2;
        char text[1000];
        std::snprintf(text, sizeof text, "%.17g", std::bit_cast<double>(low));
        ASSERT_EQ(ReadBits(text), low) << text;
        if (std::numeric_limits<long double>::digits == std::numeric_limits<double>::digits) {
            continue;
        }
        std::snprintf(text, sizeof text, "%.800Le", middle);
        ASSERT_EQ(ReadBits(text), low + low % 2) << text;
        std::string above = text;
        ASSERT_EQ(ReadBits(above.insert(above.find('e'), "1")), low + 1) << above;
    }
}

TEST(JsonConfigReader, KeepsAnEarlierError) {
    JsonConfigReader reader;
    picojson::value value;
    std::string error = "x";
    reader.Read("[1]");
    EXPECT_FALSE(reader.getJsonValue(value, error));
    EXPECT_EQ(error, "x");
    EXPECT_EQ(value.serialize(), "[1]");
    reader.Read(Repeat("[{\"a\":", 100));
    EXPECT_FALSE(reader.getJsonValue(value, error));
    EXPECT_EQ(error, kError + "{\"a\":" + Repeat("[{\"a\":", 49)) << "not at the bracket of level 101";
    EXPECT_EQ(value.serialize(), "[1]") << "text that is too deep changed the value";
    EXPECT_EQ(ParseText("[1 2\n" + Repeat("[", 200)), kError + "2")
        << "an error before that bracket comes first";
}

TEST(JsonConfigReader, MatchesPicojsonOnRandomText) {
    std::mt19937 random = test::SeededRandom();
    const std::string any[] = {"[", "]",      "{",       "}",    "\"",   "\\",    ",", ":", "1",  "\n",
                               " ", "\"a\":", "\\u00e9", "null", "true", "false", ".", "-", "e-", "+"};
    const std::string inString[] = {"[[[[", "{{{{", "]", "}", "\\\\", "\\\"", "x", "\\n"};
    for (int i = 0; i < 20000 / VELM_TEST_SLOWDOWN; ++i) {
        std::string text = "[";
        if (i % 2 == 0) {
            for (auto left = random() % 40; left != 0; --left) {
                text += any[random() % std::size(any)];
            }
        } else {  // brackets in strings of any length, then arrays at the depth limit or one deeper
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

}  // namespace velm::json_config_reader_test
