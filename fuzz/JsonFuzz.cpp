// Reads the input as JSON text and as a JSON file. Where picojson can parse the text safely, both must agree.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "ScratchFile.h"
#include "velm/JsonConfigReader.h"

namespace {

void Require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void CompareWithPicojson(const std::string& text) {
    velm::JsonConfigReader reader;
    reader.Read(text);
    picojson::value value;
    std::string error;
    const bool ok = reader.getJsonValue(value, error);
    Require(ok == error.empty());
    if (std::count(text.begin(), text.end(), '{') > picojson::DEFAULT_MAX_DEPTHS) {
        return;  // picojson does not limit the depth of objects
    }
    picojson::value expected;
    std::string expectedError;
    try {
        picojson::parse(expected, text.begin(), text.end(), &expectedError);
    } catch (const std::overflow_error&) {
        expectedError = "a number that no double holds";
    }
    Require(ok == expectedError.empty());
    if (ok) {
        Require(value.serialize() == expected.serialize());
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    CompareWithPicojson(text);

    static ScratchFile file;
    velm::JsonConfigReader reader;
    Require(reader.ReadFile(file.Write(text)) == 0);
    picojson::value value;
    std::string error;
    reader.getJsonValue(value, error);
    return 0;
}
