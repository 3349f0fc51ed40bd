#pragma once

#include <string>
#include <vector>

#include "velm/platform/SystemInfo.h"

namespace velmdiag::report {

/// Replaces the user's name and home folder in text, so that a report can be handed on. Letters match in
/// either case, and "/" matches "\\", as in Windows paths. A name matches as a whole word only.
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

/// The user whom the system and the environment name.
velm::platform::UserIdentity UserOfThisProcess();

}  // namespace velmdiag::report
