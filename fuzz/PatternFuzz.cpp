// UrlSchemeUtil::checkDomain on arbitrary input: the first line is the address, the rest the pattern, not
// scrambled. Short inputs are compared with std::regex.
#include <regex>
#include <string_view>

#include "Fuzz.h"
#include "PatternOracle.h"

namespace {

/// Whether std::regex can serve as the reference: it takes exponential time for nested quantifiers, even more
/// for counted ones, and overflows on long numbers.
bool RegexCanHandle(const std::string& address, const std::string& pattern) {
    std::size_t quantifiers = 0;
    for (std::size_t i = 1; i < pattern.size(); ++i) {
        const bool isGroup = pattern[i] == '?' && pattern[i - 1] == '(';
        quantifiers +=
            std::string_view("*+?{").find(pattern[i]) != std::string_view::npos && !isGroup ? 1 : 0;
    }
    static const std::regex longNumber("[0-9][0-9]");
    const std::size_t most = pattern.find('{') == std::string::npos ? 3 : 2;
    return address.size() <= (quantifiers <= 2 ? 8U : 4U) && pattern.size() <= 48 && quantifiers <= most &&
           !std::regex_search(pattern, longNumber) && !velm::test::MayDiffer(pattern);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = TextOf(data, size);
    const std::string address = input.substr(0, input.find('\n'));
    const std::string rest = address.size() < input.size() ? input.substr(address.size() + 1) : "";
    const std::string pattern(rest.c_str());
    const bool matches = velm::test::Matches(address, rest);
    if (RegexCanHandle(address, pattern)) {
        VELM_FUZZ_DEMAND(matches == velm::test::MatchesStandard(address, pattern).value_or(false));
    }
    return 0;
}
