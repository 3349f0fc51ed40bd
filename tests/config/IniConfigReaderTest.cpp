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

TEST(IniConfigReader, TextsFollowTheRulesOfTheSystem) {
    const struct {
        std::string file;
        std::string value;
        std::string section = "s";
        std::string key = "k";
    } rows[] = {
        // blanks
        {"[s]\n  k  =  a b  \n", "a b"},
        {"[s]\n\tk\t=\ta\tb\t\v\n", "a\tb"},
        {"  [ s\t] x\n\x1A\n\x1Ak=v", "v"},
        {"[s]\nk=v\n", "v", " s\t", "\nk "},
        {"[s]\na b=1\na  b=2\n", "2", "s", "a  b"},
        {"[s]\nk=\xA0v\xA0\n", "\xC2\xA0v\xC2\xA0"},
        // quotes
        {"[s]\nk=\" a \"  \n", " a "},
        {"[s]\nk=' a '\n", " a "},
        {"[s]\nk=\"a\n", "\"a"},
        {"[s]\nk=\"a'\n", "\"a'"},
        {"[s]\nk=\"\n", "\""},
        {"[s]\nk=\"\"\n", ""},
        {"[s]\nk=\"a\"b\"\n", "a\"b"},
        {"[s]\nk=\"a\" b\n", "\"a\" b"},
        {"[s]\nk='\"a\"'\n", "\"a\""},
        // comments
        {"[s]\n;k=a\n ;k=b\nk=c ;d\n", "c ;d"},
        {"[s]\n;k=a\n", "a", "s", ";k"},
        {"; [s]\nk=v\n", "DEF"},
        // lines
        {"[s]\r\nk=v\r\n", "v"},
        {"[s]\rk=v\rj=w", "v"},
        {"[s]\n\rk=a\rb\n", "a"},
        {"[s]\nk=v", "v"},
        {"[s]\nk=", ""},
        {"[s]", "DEF"},
        {"", "DEF"},
        {"[s]\nk=a=b\n", "a=b"},
        {"[s]\n=\n\nk=v\n", "v"},
        {"[s]\nkk=1\nk=2\n", "2"},
        // the first one counts
        {"[s]\nk=1\nk=2\n", "1"},
        {"[s]\nk\nk=v\n", "DEF"},
        {"[s]\na=1\n[s]\nk=2\n", "DEF"},
        {"[t]\nk=1\n[ss]\nk=2\n[s]\nk=3\n", "3"},
        // the case of letters
        {"[S]\nK=v\n", "v"},
        {"[s]\n\xE9=v\n", "v", "s", "\x82"},
        {"[s]\n\xC9=v\n", "DEF", "s", "\x82"},
        // section lines
        {"[s] x]\nk=v\n", "DEF"},
        {"[s] x]\nk=v\n", "v", "s] x"},
        {"[[s]\nk=v\n", "v", "[s"},
        {"[s]\n[x\n[y=1\nk=v\n", "v"},
        {"[s]\n[y=1\n", "1", "s", "[y"},
        {"k=v\n[s]\n", "DEF"},
        {"k=v\n[s]\n", "v", ""},
        {"[s]\nk=v\n[]\nk=w\n", "DEF", ""},
        {"[s]\nk=v\n =x\n", "x", "s", ""},
        // NULs
        {"[s\0t]\nk=a\0b\n"_s, "a"},
        {"[s]\nk=a \0b\n"_s, "a "},
        {"[s]\nk=\"a\"\0b\n"_s, "a"},
        {"[s]\nk\0x=1\nk=2\n"_s, "1"},
        {"\0[s]\nk=v\n"_s, "DEF"},
        // encodings
        {"[s]\nk=\xE9\x80\x81\n", "\xC3\xA9\xE2\x82\xAC\xC2\x81"},
        {"\xEF\xBB\xBF[s]\nk=\xC3\xA9\xFF\n", "\xC3\xA9\xEF\xBF\xBD"},
        {"\xEF\xBB\xBF", "DEF"},
        {Utf16(u"[s]\r\nk=\u20AC\xD83D\xDE00\r\n", false), "\xE2\x82\xAC\xF0\x9F\x98\x80"},
        {Utf16(u"[s]\nk=a\u0A0D\u2029b\xD800", true), "a\xE0\xA8\x8D\xE2\x80\xA9"_s + "b\xEF\xBF\xBD"},
        {Utf16(u"[s]\nk=v\n", false).substr(2), "DEF"},
        {"\xFF\xFE", "DEF"},
        {"\xFF", "DEF"},
    };
    for (const auto& row : rows) {
        const std::string path = WriteFile("text.ini", row.file);
        EXPECT_EQ(ReadText(path, row.section, row.key), row.value) << testing::PrintToString(row.file);
    }
}

TEST(IniConfigReader, NumbersFollowTheRulesOfTheSystem) {
    const struct {
        const char* setting;
        int value;
    } rows[] = {
        {"7", 7},
        {"  +7 ", 7},
        {"-5", -5},
        {"- 5", 0},
        {"--5", 0},
        {"+-7", 0},
        {"0x10", 16},
        {"0xabCDefg", 0xABCDEF},
        {"-0x1F", -31},
        {"0X10", 0},
        {"0x", 0},
        {"0x-5", 0},
        {"00x5", 0},
        {"x10", 0},
        {"0o178", 15},
        {"-0b112", -3},
        {"0B1", 0},
        {"010", 10},
        {"12abc", 12},
        {"1.5", 1},
        {"1,000", 1},
        {"abc", 0},
        {"\"  7\"", 7},
        {"' '", 0},
        {"7;c", 7},
        {"\xA0"
         "7",
         0},
        {"\"\x01"
         "7\"",
         7},
        {"", 99},
        {"\"\"", 99},
        {"4294967295", -1},
        {"4294967296", 0},
        {"2147483648", -2147483647 - 1},
        {"-4294967295", 1},
        {"99999999999999", 276447231},
        {"0x1FFFFFFFF", -1},
        {"00000000000000000000000000007", 7},
        {"000000000000000000000000000007", 0},  // of which 29 characters are read
    };
    for (const auto& row : rows) {
        const std::string path = WriteFile("int.ini", std::string("[s]\nk=") + row.setting + "\n");
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
