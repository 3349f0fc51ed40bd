#include "velm/IniConfigReader.h"

#include <gtest/gtest.h>

#include "File.h"

// The expectations are what Wine 8 answers; they hold on Linux too.
namespace velm {
namespace {

std::string ReadText(const std::string& path, const std::string& section, const std::string& key,
                     const std::string& defaultText = "DEF") {
    std::string value = "old";
    IniConfigReader().GetIfOk(path, section, key, defaultText, value);
    return value;
}

int ReadInt(const std::string& path, const std::string& key, int defaultValue) {
    int value = 12345;
    IniConfigReader().GetIfOk(path, "s", key, defaultValue, value);
    return value;
}

std::string operator""_s(const char* text, std::size_t size) {
    return {text, size};
}

std::string Utf16(const std::u16string& text, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

TEST(IniConfigReader, ValuesFollowTheRulesOfTheSystem) {
    const struct {
        std::string setting;
        std::string value;
    } rows[] = {
        {"  a b  ", "a b"},
        {"\ta\tb\t\v\x1A", "a\tb"},
        {"\xA0v\xA0", "\xC2\xA0v\xC2\xA0"},
        {"", ""},
        {"c ;d", "c ;d"},
        {"\" a \"  ", " a "},
        {"' a '", " a "},
        {"\"a", "\"a"},
        {"\"", "\""},
        {"\"a\"b\"", "a\"b"},
        {"\"a\" b", "\"a\" b"},
        {"'\"a\"'", "\"a\""},
        {"a\0b"_s, "a"},
        {"\"a\"\0b"_s, "a"},
        {"\xE9\x80\x81", "\xC3\xA9\xE2\x82\xAC\xC2\x81"},
    };
    for (const auto& row : rows) {
        const std::string path = WriteFile("value.ini", "[s]\n  k  =" + row.setting + "\nj=1\n");
        EXPECT_EQ(ReadText(path, "s", "k"), row.value) << testing::PrintToString(row.setting);
    }
}

TEST(IniConfigReader, LinesFollowTheRulesOfTheSystem) {
    const struct {
        std::string file;
        std::string value;
        std::string section = "s";
        std::string key = "k";
    } rows[] = {
        {"  [ s\t] x\n\x1A\n\x1Ak=v", "v"},
        {"[s]\nk=v\n", "v", " s\t", "\nk "},
        {"[s]\na b=1\na  b=2\n", "2", "s", "a  b"},
        // there are no comments, only keys that nobody asks for
        {"[s]\n;k=a\n ;k=b\nk=c\n", "c"},
        {"[s]\n;k=a\n", "a", "s", ";k"},
        {"; [s]\nk=v\n", "DEF"},
        // what ends a line
        {"[s]\r\nk=v\r\n", "v"},
        {"[s]\rk=v\rj=w", "v"},
        {"[s]\n\rk=a\rb\n", "a"},
        // the first one counts
        {"[s]\nk\nk=v\n", "DEF"},
        {"[s]\na=1\n[s]\nk=2\n", "DEF"},
        {"[t]\nk=1\n[ss]\nk=2\n[S]\nkk=3\nK=4\nk=5\n", "4"},
        // the case of letters, in ASCII only
        {"[s]\n\xE9=v\n", "v", "s", "\x82"},
        {"[s]\n\xC9=v\n", "DEF", "s", "\x82"},
        // odd sections and keys
        {"[s] x]\nk=v\n", "DEF"},
        {"[s] x]\nk=v\n", "v", "s] x"},
        {"[[s]\nk=v\n", "v", "[s"},
        {"[s]\n[x\n[y=1\n=\n\nk=v\n", "v"},
        {"[s]\n[y=1\n", "1", "s", "[y"},
        {"k=v\n[s]\n", "DEF"},
        {"k=v\n[s]\n", "v", ""},
        {"[s]\nk=v\n[]\nk=w\n", "DEF", ""},
        {"[s]\nk=v\n =x\n", "x", "s", ""},
        {"[s\0t]\nk\0x=1\nk=2\n"_s, "1"},
        {"\0[s]\nk=v\n"_s, "DEF"},
        // encodings
        {"\xEF\xBB\xBF[s]\nk=\xC3\xA9\xFF\n", "\xC3\xA9\xEF\xBF\xBD"},
        {"\xEF\xBB\xBF", "DEF"},
        {"\xFF\xFE", "DEF"},
        {Utf16(u"[s]\r\nk=\u20AC\xD83D\xDE00\r\n", false), "\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {Utf16(u"[s]\nk=a\u0A0D\u2029\xD800", true), "a\xE0\xA8\x8D\xE2\x80\xA9\xEF\xBF\xBD"},
        {Utf16(u"[s]\nk=v\n", false).substr(2), "DEF"},
    };
    for (const auto& row : rows) {
        const std::string path = WriteFile("lines.ini", row.file);
        EXPECT_EQ(ReadText(path, row.section, row.key), row.value) << testing::PrintToString(row.file);
    }
}

TEST(IniConfigReader, NumbersFollowTheRulesOfTheSystem) {
    const std::string thirty = std::string(29, '0') + "7";  // of which 29 characters are read
    const struct {
        std::string setting;
        int value;
    } rows[] = {
        {"  +7 ", 7},
        {"-5", -5},
        {"- 5", 0},
        {"0x10", 16},
        {"0xabCDefg", 0xABCDEF},
        {"-0x1F", -31},
        {"0X10", 0},
        {"0x", 0},
        {"00x5", 0},
        {"0o178", 15},
        {"-0b112", -3},
        {"010", 10},
        {"12abc", 12},
        {"abc", 0},
        {"\"  7\"", 7},
        {"\2407", 0},
        {"\"\0017\"", 7},
        {"\"\"", 99},
        {"4294967295", -1},
        {"2147483648", -2147483647 - 1},
        {"-4294967295", 1},
        {"99999999999999", 276447231},
        {"0x1FFFFFFFF", -1},
        {thirty, 0},
        {thirty.substr(1), 7},
    };
    for (const auto& row : rows) {
        const std::string path = WriteFile("int.ini", "[s]\nk=" + row.setting + "\n");
        EXPECT_EQ(ReadInt(path, "k", 99), row.value) << row.setting;
    }
    EXPECT_EQ(ReadInt(WriteFile("int.ini", "[s]\n"), "k", -3), -3);
}

TEST(IniConfigReader, DefaultsReplaceWhatIsMissing) {
    const std::string path = WriteFile("default.ini", "[s]\nk=v\n");
    const std::string folder = std::filesystem::current_path().string();
    for (const std::string& missing : {folder + "/none.ini", folder + "/none/none.ini", folder, ""_s}) {
        EXPECT_EQ(ReadText(missing, "s", "k", "abc"), "abc") << missing;
        EXPECT_EQ(ReadInt(missing, "k", 7), 7) << missing;
    }
    const struct {
        const char* defaultText;
        const char* value;
    } rows[] = {{" d  ", " d"}, {"\"d\"  ", "d"}, {"' d '", " d "}, {"\"", "\""},
                {"   ", " "},   {"d\t", "d\t"},   {"", ""},         {"\x82", "\xC3\xA9"}};
    for (const auto& row : rows) {
        EXPECT_EQ(ReadText(path, "s", "none", row.defaultText), row.value) << row.defaultText;
    }
}

TEST(IniConfigReader, LongValuesAreCutAtTheBuffer) {
    const struct {
        std::string file;
        std::string value;
    } rows[] = {
        {std::string(1023, 'a'), std::string(1023, 'a')},
        {std::string(2000, 'a'), std::string(1023, 'a')},
        {"\"" + std::string(1030, 'a') + "\"", std::string(1023, 'a')},
        {std::string(1 << 20, 'a'), std::string(1023, 'a')},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ReadText(WriteFile("long.ini", "[s]\nk=" + row.file + "\n"), "s", "k"), row.value);
    }
    const std::u16string pairAtTheCut = u"[s]\nk=" + std::u16string(1022, u'a') + u"\xD83D\xDE00";
    EXPECT_EQ(ReadText(WriteFile("long.ini", Utf16(pairAtTheCut, false)), "s", "k"),
              std::string(1022, 'a') + "\xEF\xBF\xBD");
}

TEST(IniConfigReader, AHundredThousandKeysAreAllFound) {
    std::string file = "[s]\n";
    for (int i = 0; i < 100000; ++i) {
        file += "key" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    }
    const std::string path = WriteFile("many.ini", file);
    for (const int i : {0, 50000, 99999}) {
        EXPECT_EQ(ReadInt(path, "key" + std::to_string(i), -1), i);
    }
    EXPECT_EQ(ReadText(path, "s", "key100000"), "DEF");
}

}  // namespace
}  // namespace velm
