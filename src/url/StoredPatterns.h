/// @file
/// The expressions that decide which links and addresses are accepted. The compiler scrambles them, so no
/// binary holds the plain text.
#pragma once

#include <string_view>

#include "url/Scramble.h"

// A lower-case host of labels joined by dots, a port, a path without ";", "?", "#", ":" and "@". Each
// repetition ends at a character that it cannot match, so matching hardly ever backtracks. No group can hold
// a NUL.
#define VELM_LABEL "[a-z0-9]+(?:-+[a-z0-9]+)*"
#define VELM_PORT "(?::[0-9]{1,5})?"
#define VELM_PLAIN "[A-Za-z0-9._~!$&'()*+,=/-]*"
#define VELM_PATH "(?:/" VELM_PLAIN "(?:%[0-9A-Fa-f]{2}" VELM_PLAIN ")*)?"
#define VELM_BODY VELM_LABEL "(?:\\." VELM_LABEL ")*" VELM_PORT VELM_PATH

#define VELM_TITLE "([A-Za-z0-9_-]+)"
#define VELM_TICKET "([A-Za-z0-9_.~=-]+)"

#define VELM_HTTPS_PORT "(?::443)?"
#define VELM_ANY_PATH "(?:/.*)?"
#define VELM_SUBDOMAIN "(?:[a-z0-9-]+\\.)*"

namespace velm {

// Constant arrays, so that the text is scrambled at compile time.
namespace scrambled {

inline constexpr auto kConnectLink =
    Scramble("velm://connect/(" VELM_BODY ")\\?title=" VELM_TITLE "&ticket=" VELM_TICKET);
inline constexpr auto kShortLink = Scramble("velm:(" VELM_BODY ");" VELM_TITLE ";" VELM_TICKET);
inline constexpr auto kResumeLink = Scramble("velm://resume\\?title=" VELM_TITLE "&ticket=" VELM_TICKET);

inline constexpr auto kShape = Scramble("https?://" VELM_BODY);
inline constexpr auto kProduction =
    Scramble("https://" VELM_SUBDOMAIN "play\\.velm\\.example" VELM_HTTPS_PORT VELM_ANY_PATH);
inline constexpr auto kStaging =
    Scramble("https://" VELM_SUBDOMAIN "stage\\.velm\\.example" VELM_PORT VELM_ANY_PATH);
inline constexpr auto kEdge =
    Scramble("https://[a-z]{2}-[a-z]+-[0-9]+\\.edge\\.velm\\.example" VELM_HTTPS_PORT VELM_ANY_PATH);
inline constexpr auto kLoopback = Scramble("http://(?:localhost|127\\.0\\.0\\.1)" VELM_PORT VELM_ANY_PATH);

}  // namespace scrambled

struct LinkPattern {
    std::string_view scrambled;
    bool hasBody;  ///< its groups are body, title and ticket; otherwise title and ticket
};

inline constexpr LinkPattern kLinkPatterns[] = {
    {scrambled::kConnectLink.data(), true},
    {scrambled::kShortLink.data(), true},
    {scrambled::kResumeLink.data(), false},
};

/// An accepted address matches exactly two: the shape, which excludes user names, queries and fragments, and
/// one service.
inline constexpr std::string_view kServicePatterns[] = {
    scrambled::kShape.data(), scrambled::kProduction.data(), scrambled::kStaging.data(),
    scrambled::kEdge.data(),  scrambled::kLoopback.data(),
};

}  // namespace velm

#undef VELM_LABEL
#undef VELM_PORT
#undef VELM_PLAIN
#undef VELM_PATH
#undef VELM_BODY
#undef VELM_TITLE
#undef VELM_TICKET
#undef VELM_HTTPS_PORT
#undef VELM_ANY_PATH
#undef VELM_SUBDOMAIN
