// Reading and parsing a JSON file, against picojson on the same text in memory.
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "Families.h"
#include "TemporaryFile.h"
#include "velm/JsonConfigReader.h"

namespace velm::bench {
namespace {

/// An array of small objects.
std::string MakeJson(std::size_t size) {
    std::string text = "[";
    for (int i = 0; text.size() < size; ++i) {
        const std::string number = std::to_string(i);
        text += i == 0 ? "\n" : ",\n";
        text += R"({"id": )" + number + R"(, "name": "player )" + number +
                R"(", "ping": 12.5, "tags": ["eu", "touch", null], "open": true})";
    }
    return text + "\n]\n";
}

}  // namespace

void MeasureJson(Suite& suite) {
    const std::string text = MakeJson(suite.IsShort() ? 10'000 : 10'000'000);
    const test::TemporaryFile file("velm_bench.json", text);
    const Contender ours = Repeat("JsonConfigReader", [&] {
        JsonConfigReader reader;
        picojson::value value;
        std::string error;
        reader.ReadFile(file.Name());
        reader.getJsonValue(value, error);
        Keep(&value);
    });
    const Contender picojson = Repeat("picojson, in memory", [&] {
        picojson::value value;
        std::string error;
        picojson::parse(value, text.begin(), text.end(), &error);
        Keep(&value);
    });
    suite.Compare("JSON", "10 MB read from a file and parsed", ours, {{picojson, 0.9}});
}

}  // namespace velm::bench
