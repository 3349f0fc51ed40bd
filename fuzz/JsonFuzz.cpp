// Reads the input as JSON text and as a JSON file. Where picojson can parse the text safely, both must agree.
// What velmdiag's strict check accepts, the library must accept, and formatting it must not change the value.
#include <algorithm>
#include <stdexcept>

#include "Fuzz.h"
#include "JsonSyntax.h"
#include "velm/JsonConfigReader.h"

namespace {

void CompareWithPicojson(const std::string& text) {
    velm::JsonConfigReader reader;
    reader.Read(text);
    picojson::value value;
    std::string error;
    const bool ok = reader.getJsonValue(value, error);
    VELM_FUZZ_DEMAND(ok == error.empty());
    if (std::count(text.begin(), text.end(), '{') > picojson::DEFAULT_MAX_DEPTHS) {
        return;  // picojson does not limit the depth of objects
    }
    picojson::value expected;
    std::string expectedError;
    try {
        picojson::parse(expected, text.begin(), text.end(), &expectedError);
    } catch (const std::overflow_error&) {
        expectedError = "number out of range";
    }
    VELM_FUZZ_DEMAND(ok == expectedError.empty());
    VELM_FUZZ_DEMAND(!ok || value.serialize() == expected.serialize());
}

void CheckStrictly(const std::string& text) {
    if (text.starts_with("\xEF\xBB\xBF")) {
        return;  // which only a file may start with
    }
    try {
        velmdiag::CheckJson(text);
    } catch (const velmdiag::JsonSyntaxError&) {
        return;
    }
    std::string serialized[2];
    const std::string texts[] = {text, velmdiag::FormatJson(text, true)};
    for (int i = 0; i < 2; ++i) {
        velm::JsonConfigReader reader;
        picojson::value value;
        std::string error;
        reader.Read(texts[i]);
        VELM_FUZZ_DEMAND(reader.getJsonValue(value, error));
        serialized[i] = value.serialize();
    }
    VELM_FUZZ_DEMAND(serialized[0] == serialized[1]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = TextOf(data, size);
    CompareWithPicojson(text);
    CheckStrictly(text);

    velm::JsonConfigReader reader;
    VELM_FUZZ_DEMAND(reader.ReadFile(FileOf(text).Name()) == 0);
    picojson::value value;
    std::string error;
    VELM_FUZZ_DEMAND(reader.getJsonValue(value, error) == error.empty());
    return 0;
}
