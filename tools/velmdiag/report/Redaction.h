#pragma once

#include <string>
#include <vector>

#include "velm/platform/SystemInfo.h"

namespace velmdiag::report {

/// Replaces the user's name and home folder in text, so that a report can be shared. Matching ignores case
/// and, as in Windows paths, the difference between "/" and "\\". A name matches only as a whole word.
class Redaction {
public:
    /// @param user  names and folders; empty ones and roots such as "/" are ignored
    explicit Redaction(const velm::platform::UserIdentity& user);

    std::string operator()(const std::string& text) const;

private:
    struct Secret {
        std::string text;
        std::string shown;
    };
    const Secret* SecretAt(const std::string& text, std::size_t at) const;

    std::vector<Secret> m_secrets;  // longest first
};

/// The current user, according to the system and the environment.
velm::platform::UserIdentity UserOfThisProcess();

}  // namespace velmdiag::report
