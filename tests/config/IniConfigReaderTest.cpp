#include "velm/IniConfigReader.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "TemporaryFile.h"

// The results of Wine 8.
namespace velm::ini_config_reader_test {

using namespace std::string_literals;

constexpr char kFile[] = "./settings.ini";

struct Setting {
    std::string file;
    std::string value;
    std::string section = "s";
    std::string key = "k";
    std::string defaultText = "DEF";
};

void ExpectRead(const Setting& row) {
    const test::TemporaryFile file(kFile, row.file);
    std::string value = "old";
    IniConfigReader().GetIfOk(kFile, row.section, row.key, row.defaultText, value);
    EXPECT_EQ(value, row.value) << testing::PrintToString(row.file);
}

TEST(IniConfigReader, ReadsTextsLikeTheSystem) {
    for (const Setting& row : {
             Setting{"[s]\n  k  =  a b  \n", "a b"},
             {"[s]\nk=\n", ""},
             {"[s]\nk=\" a \"  \n", " a "},
             {"[s]\r\nk=\"a\r\n", "\"a"},
             {"  [ s\t] x\n;k=a\nkk=b\nK=v\nk=w\n", "v"},
             {"; [s]\nk=v\n", "DEF"},
             {"[t]\nk=1\n[S]\nk=2\n[s]\nk=3\n", "2"},
             {"[s]\nj=v\n", "d \xC3\xA9", "s", "k", "d \x82 "},
             {"[s]\n\xE9=\xE9\x80\n", "\xC3\xA9\xE2\x82\xAC", "s", "\x82"},
             {"[\xE9]\nk=v\n", "v", "\x82"},
             {"k=v\n[s]\n", "v", ""},
             {"\xEF\xBB\xBF[s]\nk=\xC3\xA9\xFF\n", "\xC3\xA9\xEF\xBF\xBD"},
             {"\xFF\xFE[\0s\0]\0\n\0k\0=\0\xAC\x20\x3D\xD8\0\xDE"s, "\xE2\x82\xAC\xF0\x9F\x98\x80"},
         }) {
        ExpectRead(row);
    }
}

TEST(IniConfigReader, ReadsNumbersLikeTheSystem) {
    const std::pair<std::string, int> rows[] = {
        {"k=  +7 ", 7}, {"k=-5x", -5},        {"k=- 5", 0}, {"k=0xabCDefg", 0xABCDEF},
        {"k=010", 10},  {"k=4294967295", -1}, {"k=", -3},   {"j=1", -3}};
    for (const auto& [line, expected] : rows) {
        const test::TemporaryFile file(kFile, "[s\xE9]\n" + line + "\n");
        int value = 12345;
        IniConfigReader().GetIfOk(kFile, "s\x82", "k", -3, value);
        EXPECT_EQ(value, expected) << line;
    }
}

TEST(IniConfigReader, GivesTheDefaultWithoutAFile) {
    const std::string folder = std::filesystem::current_path().string();
    for (const std::string& missing : {folder + "/none.ini", folder}) {
        std::string value;
        IniConfigReader().GetIfOk(missing, "s", "k", "abc", value);
        EXPECT_EQ(value, "abc") << missing;
    }
}

TEST(IniConfigReader, TruncatesLongValues) {
    const std::string as(1023, 'a');
    for (const std::string& value : {as, '"' + as + "b\"", as + std::string(1 << 20, 'b')}) {
        ExpectRead({"[s]\nk=" + value + "\n", as});
    }
    const std::string text = as.substr(1);  // then a surrogate pair cut in two
    ExpectRead({"\xEF\xBB\xBF[s]\nk=" + text + "\xF0\x9F\x98\x80", text + "\xEF\xBF\xBD"});
}

}  // namespace velm::ini_config_reader_test
