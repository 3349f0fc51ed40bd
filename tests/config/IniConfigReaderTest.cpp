#include "velm/IniConfigReader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "TemporaryFile.h"

// The expectations are what Wine 8 answers; most hold on Linux, too.
namespace velm {
namespace {

using namespace std::string_literals;

constexpr char kFile[] = "./settings.ini";

/// What is read from a file of this content.
std::string ReadText(const std::string& content, const std::string& section = "s",
                     const std::string& key = "k", const std::string& defaultText = "DEF") {
    const test::TemporaryFile file(kFile, content);
    std::string value = "old";
    IniConfigReader().GetIfOk(kFile, section, key, defaultText, value);
    return value;
}

int ReadInt(const std::string& content, int defaultValue) {
    const test::TemporaryFile file(kFile, content);
    int value = 12345;
    IniConfigReader().GetIfOk(kFile, "s", "k", defaultValue, value);
    return value;
}

TEST(IniConfigReader, ValuesFollowTheRulesOfTheSystem) {
    const std::pair<std::string, std::string> rows[] = {{"  a b  ", "a b"},
                                                        {"", ""},
                                                        {"\" a \"  ", " a "},
                                                        {"' a '", " a "},
                                                        {"\"a", "\"a"},
                                                        {"\"", "\""},
                                                        {"\"a\" b", "\"a\" b"},
                                                        {"a\0b"s, "a"},
                                                        {"\ta\tb\t\v\x1A", "a\tb"},
                                                        {"\xA0v", "\xC2\xA0v"},
                                                        {"\xE9\x80", "\xC3\xA9\xE2\x82\xAC"}};
    for (const auto& [setting, value] : rows) {
        EXPECT_EQ(ReadText("[s]\n  k  =" + setting + "\nj=1\n"), value) << testing::PrintToString(setting);
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
        // there are no comments, only keys that nobody asks for
        {"[s]\n;k=a\n ;k=b\nk=c\n", "c"},
        {"; [s]\nk=v\n", "DEF"},
        // what ends a line
        {"[s]\r\nk=v\r\n", "v"},
        {"[s]\rk=v\rj=w", "v"},
        // the first one counts
        {"[s]\nk\nk=v\n", "DEF"},
        {"[s]\na=1\n[s]\nk=2\n", "DEF"},
        {"[t]\nk=1\n[ss]\nk=2\n[S]\nkk=3\nK=4\nk=5\n", "4"},
        // the case of letters, in ASCII only
        {"[s]\n\xE9=v\n", "v", "s", "\x82"},
        {"[s]\n\xC9=v\n", "DEF", "s", "\x82"},
        // odd sections and keys
        {"[s] x]\nk=v\n", "v", "s] x"},
        {"[s]\n[x\n[y=1\n=\n\nk=v\n", "v"},
        {"k=v\n[s]\n", "DEF"},
        {"k=v\n[s]\n", "v", ""},
        {"[s]\nk=v\n[]\nk=w\n", "DEF", ""},
        {"[s]\nk=v\n =x\n", "x", "s", ""},
        // encodings
        {"\xEF\xBB\xBF[s]\nk=\xC3\xA9\xFF\n", "\xC3\xA9\xEF\xBF\xBD"},
        {"\xFF\xFE[\0s\0]\0\n\0k\0=\0\xAC\x20\x3D\xD8\0\xDE"s, "\xE2\x82\xAC\xF0\x9F\x98\x80"},
#ifdef _WIN32  // Wine's own
        {"[s]\nk=v\n", "v", " s\t", "\nk "},
        {"[s\0t]\nk\0x=1\nk=2\n"s, "1"},
        {"\xFE\xFF\0[\0s\0]\0\n\0k\0=\x0A\x0D\xD8\0"s, "\xE0\xA8\x8D\xEF\xBF\xBD"},
#endif
    };
    for (const auto& row : rows) {
        EXPECT_EQ(ReadText(row.file, row.section, row.key), row.value) << testing::PrintToString(row.file);
    }
}

TEST(IniConfigReader, NumbersFollowTheRulesOfTheSystem) {
    const std::pair<std::string, int> rows[] = {
        {"  +7 ", 7}, {"-5", -5},  {"- 5", 0},   {"0x10", 16}, {"0xabCDefg", 0xABCDEF}, {"0X10", 0},
        {"0x", 0},    {"010", 10}, {"\2407", 0}, {"\"\"", 99}, {"4294967295", -1},      {"4294967303", 7}};
    for (const auto& [setting, value] : rows) {
        EXPECT_EQ(ReadInt("[s]\nk=" + setting + "\n", 99), value) << setting;
    }
    EXPECT_EQ(ReadInt("[s]\n", -3), -3);
}

TEST(IniConfigReader, DefaultsReplaceWhatIsMissing) {
    const std::string folder = std::filesystem::current_path().string();
    for (const std::string& missing : {folder + "/none.ini", folder}) {
        std::string value;
        IniConfigReader().GetIfOk(missing, "s", "k", "abc", value);
        EXPECT_EQ(value, "abc") << missing;
    }
    const char* const rows[][2] = {{" d  ", " d"}, {"\"d\"  ", "d"}, {"", ""}, {"\x82", "\xC3\xA9"}};
    for (const auto& [defaultText, value] : rows) {
        EXPECT_EQ(ReadText("[s]\nj=v\n", "s", "k", defaultText), value) << defaultText;
    }
}

TEST(IniConfigReader, LongValuesAreCutAtTheBuffer) {
    const std::string as(1023, 'a');
    for (const std::string& value : {as, '"' + as + "b\"", as + std::string(1 << 20, 'b')}) {
        EXPECT_EQ(ReadText("[s]\nk=" + value + "\n"), as);
    }
    EXPECT_EQ(ReadText("\xEF\xBB\xBF[s]\nk=" + as.substr(1) + "\xF0\x9F\x98\x80"),
              as.substr(1) + "\xEF\xBF\xBD")
        << "a pair at the cut";
}

}  // namespace
}  // namespace velm
