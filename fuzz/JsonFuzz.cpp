// Reads the input as JSON text and as a JSON file. Where picojson can parse the text safely, both must agree.
#include <algorithm>
#include <stdexcept>

#include "Fuzz.h"
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = TextOf(data, size);
    CompareWithPicojson(text);

    velm::JsonConfigReader reader;
    VELM_FUZZ_DEMAND(reader.ReadFile(FileOf(text).Name()) == 0);
    picojson::value value;
    std::string error;
    VELM_FUZZ_DEMAND(reader.getJsonValue(value, error) == error.empty());
    return 0;
}
