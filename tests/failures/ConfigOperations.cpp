#include <velm/VelmUtil.h>

#include <cstdlib>

#include "Operation.h"
#include "TemporaryFile.h"

namespace velm::test {
namespace {

constexpr char kIni[] = "./failures.ini";
const std::string kSection = "a section with a long name";
const std::string kKey = "a key with a long name";

// The outcomes of what writes a text: as it was, emptied, or the expected.
enum Written : long long { kOld, kEmpty, kNew };

template <typename Body>
long long Write(Attempt& attempt, Body body) {
    std::string out = "old";
    const bool threw = attempt([&] { return body(out), 0; }) == kThrew;
    EXPECT_TRUE(out == "old" || out == kText || out.empty());
    return threw ? kThrew : out == kText ? kNew : out.empty() ? kEmpty : kOld;
}

long long ReadEnvironment(Attempt& attempt) {
    static const std::string kName = "VELM_TEST_OF_FAILURES";
    setenv(kName.c_str(), kText.c_str(), 1);
    return Write(attempt, [](std::string& out) { EnvConfigReader().GetIfOk(kName, out); });
}

long long ReadIniText(Attempt& attempt) {
    const TemporaryFile file(kIni, '[' + kSection + "]\n" + kKey + '=' + kText + '\n');
    return Write(attempt, [](std::string& out) {
        IniConfigReader().GetIfOk(kIni, kSection, kKey, std::string(), out);
    });
}

long long ReadJsonFile(Attempt& attempt) {
    static const std::string kFile = "a-json-file-with-a-long-name.json";
    const TemporaryFile file(kFile, std::string(200'000, ' ') + "[1]\n");
    JsonConfigReader reader;
    const long long outcome = attempt([&] { return reader.ReadFile(kFile); });
    picojson::value json;
    std::string error;
    EXPECT_EQ(reader.getJsonValue(json, error), outcome == 0);
    return outcome;
}

const std::string kUrl =
    "https://a.long.host.of.some.domain/and/a/long/path?name-of-a-parameter=value-of-it#end";

long long ParseUrl(Attempt& attempt) {
    UrlParser parser;
    UrlParser copy;
    const long long code = attempt([&] {
        const ErrorCode result = parser.Parse(kUrl.c_str());
        copy = parser;
        return copy.ParamMap().size() == 1 ? result : ErrorCode(1);
    });
    EXPECT_EQ(parser.Parse(kUrl.c_str()), 0U);
    EXPECT_STREQ(parser.Param("name-of-a-parameter"), "value-of-it");
    return code;
}

long long ReadLink(Attempt& attempt) {
    static const std::string kLink = "velm://connect/play.velm.example/game?title=Racer&ticket=a1.b2";
    std::string url = "https";
    std::string title;
    std::string ticket;
    const long long code = attempt([&] { return UrlSchemeUtil::read(kLink, url, title, ticket); });
    EXPECT_TRUE(code == 0 ? url == "https://play.velm.example/game" : code == kThrew);
    return code;
}

}  // namespace

Operations ConfigOperations() {
    return {
        {.what = "EnvConfigReader",
         .run = ReadEnvironment,
         .outcome = kNew,
         .noMemory = {kOld},
         .failures = {{"MultiByteToWideChar", kOld}, {"_wdupenv_s", kOld}, {"WideCharToMultiByte", kOld}}},
        {.what = "IniConfigReader, text",
         .run = ReadIniText,
         .outcome = kNew,
         .noMemory = {kThrew, kOld, kEmpty},
         .failures = {{"MultiByteToWideChar", kOld},
                      {"GetPrivateProfileStringW", kEmpty},
                      {"WideCharToMultiByte", kOld}}},
        {.what = "JsonConfigReader::ReadFile", .run = ReadJsonFile, .noMemory = {1}},
        {.what = "UrlParser", .run = ParseUrl, .noMemory = {kThrew}},
        {.what = "UrlSchemeUtil::read", .run = ReadLink, .noMemory = {kThrew}},
    };
}

}  // namespace velm::test
