#include "Redaction.h"

#include <algorithm>
#include <string_view>

#include "Environment.h"

namespace velmdiag::report {
namespace {

char Folded(char c) {
    return c == '\\' ? '/' : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string Folded(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) { return Folded(c); });
    return text;
}

/// Letters and digits; every character outside ASCII counts as a letter.
bool IsWordCharacter(char c) {
    const char folded = Folded(c);
    return (folded >= 'a' && folded <= 'z') || (folded >= '0' && folded <= '9') ||
           static_cast<unsigned char>(folded) >= 0x80;
}

}  // namespace

Redaction::Redaction(const velm::platform::UserIdentity& user) {
    const auto add = [this](const std::string& secret, const char* shown) {
        const bool known =
            std::ranges::any_of(m_secrets, [&](const Secret& at) { return at.text == secret; });
        if (!secret.empty() && !known) {
            m_secrets.push_back({secret, shown});
        }
    };
    for (const std::string& name : user.names) {
        add(Folded(name), "<user>");
    }
    for (std::string home : user.homes) {
        home = Folded(home);
        home.erase(home.find_last_not_of('/') + 1);
        const std::size_t slash = home.rfind('/');
        if (slash != std::string::npos) {  // otherwise a root, such as "/" or "C:\"
            add(home, "<home>");
            add(home.substr(slash + 1), "<user>");
        }
    }
    std::ranges::stable_sort(m_secrets, std::ranges::greater(),
                             [](const Secret& secret) { return secret.text.size(); });
}

std::string Redaction::operator()(const std::string& text) const {
    std::string redacted;
    for (std::size_t at = 0; at < text.size();) {
        if (const Secret* const secret = SecretAt(text, at)) {
            redacted += secret->shown;
            at += secret->text.size();
        } else {
            redacted += text[at++];
        }
    }
    return redacted;
}

const Redaction::Secret* Redaction::SecretAt(const std::string& text, std::size_t at) const {
    if (at > 0 && IsWordCharacter(text[at - 1])) {
        return nullptr;
    }
    for (const Secret& secret : m_secrets) {
        const std::size_t end = at + secret.text.size();
        const bool ends = end == text.size() || (end < text.size() && !IsWordCharacter(text[end]));
        if (ends && std::equal(secret.text.begin(), secret.text.end(), text.begin() + static_cast<long>(at),
                               [](char a, char b) { return a == Folded(b); })) {
            return &secret;
        }
    }
    return nullptr;
}

velm::platform::UserIdentity UserOfThisProcess() {
    velm::platform::UserIdentity user = velm::platform::CurrentUser();
    for (const char* const name : {"USERNAME", "USER", "LOGNAME"}) {
        user.names.push_back(Variable(name).value_or(""));
    }
    for (const char* const name : {"USERPROFILE", "HOME"}) {
        user.homes.push_back(Variable(name).value_or(""));
    }
    return user;
}

}  // namespace velmdiag::report
