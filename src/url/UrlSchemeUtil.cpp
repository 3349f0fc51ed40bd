#include "velm/UrlSchemeUtil.h"

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "url/pattern/PatternCompiler.h"
#include "url/pattern/PatternMatcher.h"
#include "url/Scramble.h"
#include "url/StoredPatterns.h"

namespace velm {
namespace {

constexpr int kMatchesOfAnAcceptedAddress = 2;

/// "http://" or "https://", as the first five bytes of an address select; empty if they select neither.
std::string_view PrefixFor(std::string_view address) {
    const std::string_view beginning = address.substr(0, 5);
    if (beginning == "http:") {
        return "http://";
    }
    return beginning == "https" ? "https://" : "";
}

std::optional<PatternProgram> CompileScrambled(std::string_view pattern) {
    return PatternCompiler::Compile(Unscramble(pattern));
}

bool Matches(std::string_view text, std::string_view scrambledPattern, std::size_t& stepsLeft) {
    const auto program = CompileScrambled(scrambledPattern);
    return program && PatternMatcher::Match(*program, text, stepsLeft);
}

ErrorCode Read(const std::string& source, std::string& url, std::string& param1, std::string& param2,
               std::size_t& stepsLeft) {
    const std::string_view prefix = PrefixFor(url);
    if (prefix.empty()) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    std::vector<PatternProgram> programs;
    for (const LinkPattern& link : kLinkPatterns) {
        auto program = CompileScrambled(link.scrambled);
        if (!program) {
            return VELM_ERROR_UTIL_INVALID_PARAM;
        }
        programs.push_back(*std::move(program));
    }
    PatternMatcher::Groups groups;
    std::size_t form = 0;
    while (form < programs.size() && !PatternMatcher::Match(programs[form], source, stepsLeft, &groups)) {
        ++form;
    }
    const bool hasBody = form < programs.size() && kLinkPatterns[form].hasBody;
    if (groups.size() != (hasBody ? 4 : 3)) {
        return VELM_ERROR_UTIL_INVALID_PARAM;
    }
    // Copies before anything is assigned: `source` may be one of the outputs.
    const std::string title(groups[groups.size() - 2]);
    const std::string ticket(groups[groups.size() - 1]);
    if (hasBody) {
        url = std::string(prefix).append(groups[1]);
    }
    param1 = title;
    param2 = ticket;
    return 0;
}

ErrorCode CheckServices(const std::string& url, std::size_t& stepsLeft) {
    int matches = 0;
    for (const std::string_view pattern : kServicePatterns) {
        matches += Matches(url, pattern, stepsLeft) ? 1 : 0;
    }
    return matches == kMatchesOfAnAcceptedAddress ? ErrorCode(0) : ErrorCode(VELM_ERROR_UTIL_INVALID_PARAM);
}

}  // namespace

UrlSchemeUtil& UrlSchemeUtil::operator=(const UrlSchemeUtil&) {
    return *this;
}

ErrorCode UrlSchemeUtil::read(const std::string& source, std::string& url, std::string& param1,
                              std::string& param2) {
    std::size_t stepsLeft = PatternLimits::kSteps;  // for both halves
    const ErrorCode result = Read(source, url, param1, param2, stepsLeft);
    return result.IsFailed() ? result : CheckServices(url, stepsLeft);
}

ErrorCode UrlSchemeUtil::readLocal(const std::string& source, std::string& url, std::string& param1,
                                   std::string& param2) {
    std::size_t stepsLeft = PatternLimits::kSteps;
    return Read(source, url, param1, param2, stepsLeft);
}

ErrorCode UrlSchemeUtil::checkDomain(const std::string& url, const std::string& pattern) {
    std::size_t stepsLeft = PatternLimits::kSteps;
    return Matches(url, pattern, stepsLeft) ? ErrorCode(0) : ErrorCode(VELM_ERROR_UTIL_INVALID_PARAM);
}

ErrorCode UrlSchemeUtil::checkPavix(const std::string& url) {
    std::size_t stepsLeft = PatternLimits::kSteps;
    return CheckServices(url, stepsLeft);
}

}  // namespace velm
