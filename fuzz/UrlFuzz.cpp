// UrlParser on arbitrary text; short text is compared with the regular expression of RFC 3986 and naive
// splitting.
#include "Fuzz.h"
#include "UrlOracle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kMaxExpressionLength = 200;
    const std::string url(TextOf(data, size).c_str());
    velm::UrlParser parser;
    const bool parsed = parser.Parse(url.c_str()) == 0U;
    VELM_FUZZ_DEMAND(parser.Url() == (parsed ? url : ""));
    if (url.size() <= kMaxExpressionLength) {
        const auto expected = velm::test::PartsByExpression(url);
        VELM_FUZZ_DEMAND(parsed == (url.empty() || !expected[0].empty()));
        VELM_FUZZ_DEMAND(velm::test::PartsOf(parser) == expected);
    }
    return 0;
}
