// UrlSchemeUtil::checkDomain on any pattern and address: the first line is the address, the rest the pattern,
// in plain form. Short ones are held against the standard library.
#include <regex>
#include <string_view>

#include "Fuzz.h"
#include "velm/UrlSchemeUtil.h"

namespace {

std::string Scrambled(std::string text) {
    for (char& c : text) {
        c = c >= 33 && c <= 126 ? static_cast<char>(33 + (c + 14) % 94) : c;
    }
    return text;
}

/// Whether the standard library can be asked: it takes exponential time for quantifiers of quantifiers, the
/// more so for counts of them, and its arithmetic on long numbers overflows.
bool IsTame(const std::string& address, const std::string& pattern) {
    std::size_t quantifiers = 0;
    for (std::size_t i = 1; i < pattern.size(); ++i) {
        const bool isGroup = pattern[i] == '?' && pattern[i - 1] == '(';
        quantifiers +=
            std::string_view("*+?{").find(pattern[i]) != std::string_view::npos && !isGroup ? 1 : 0;
    }
    static const std::regex longNumber("[0-9][0-9]");
    const std::size_t most = pattern.find('{') == std::string::npos ? 3 : 2;
    return address.size() <= (quantifiers <= 2 ? 8U : 4U) && pattern.size() <= 48 && quantifiers <= most &&
           !std::regex_search(pattern, longNumber);
}

bool MatchesStandard(const std::string& address, const std::string& pattern) {
    try {
        return std::regex_match(address, std::regex(pattern));
    } catch (const std::regex_error&) {
        return false;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = TextOf(data, size);
    const std::string address = input.substr(0, input.find('\n'));
    const std::string rest = address.size() < input.size() ? input.substr(address.size() + 1) : "";
    const std::string pattern(rest.c_str());
    const bool matches = velm::UrlSchemeUtil::checkDomain(address, Scrambled(rest)) == 0U;
    VELM_FUZZ_DEMAND(!IsTame(address, pattern) || matches == MatchesStandard(address, pattern));
    return 0;
}
