#pragma once

#include <map>
#include <string>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Splits a URL into the five components of RFC 3986 and its query into parameters.
///
/// The components are those of the expression in RFC 3986, appendix B; nothing more is validated, decoded or
/// folded. Text is bytes. The time taken grows with the length of the URL and no stack is used per character,
/// so URLs of any length and origin are safe to parse.
///
/// Threads: one object, one thread at a time. Separate objects are independent.
class VELM_UTIL_API UrlParser {
public:
    /// Everything is empty.
    UrlParser();
    /// @{
    /// Copies all components and parameters.
    UrlParser(const UrlParser& other);
    UrlParser& operator=(const UrlParser& other);
    /// @}
    virtual ~UrlParser();

    /// Replaces the whole result by that of another URL.
    /// @param url  NUL-terminated; the caller's, not needed after the call. It may be a text of this object
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null, for a line feed or carriage return in the fragment,
    ///         and for a piece of the query, between two "&", other than a name, one "=" and a value. A
    ///         failure leaves every component and the parameters empty.
    /// Throws std::bad_alloc when memory runs out; what the object then holds is unspecified.
    ErrorCode Parse(const char* url);

    // The components, NUL-terminated and never null. An absent one and an empty one are both "". Each is
    // valid until the next Parse, an assignment to the object or its end.
    const char* Url() const;        ///< the whole text
    const char* Scheme() const;     ///< without the ":" after it
    const char* Authority() const;  ///< without the "//" before it
    const char* Path() const;       ///< "/" included, where it begins with one
    const char* Query() const;      ///< without the "?" before it
    const char* Fragment() const;   ///< without the "#" before it

    /// The value of a parameter. A name that the query does not have is added with an empty value.
    /// @param name  NUL-terminated, not null; upper and lower case differ
    /// @return NUL-terminated, never null; valid until the next Parse, an assignment to the object or its end
    const char* Param(const char* name);

    /// A copy of the parameters. Of a name that occurs more than once the last value counts.
    const std::map<std::string, std::string> ParamMap() const;

    /// Has no effect.
    void DebugPrint() const;

private:
    ErrorCode ParseUrl(const char* url);
    ErrorCode ParseQuery();
    void Clear();

    std::string m_strUrl;
    std::string m_strScheme;
    std::string m_strAuthority;
    std::string m_strPath;
    std::string m_strQuery;
    std::string m_strFragment;
    std::map<std::string, std::string> m_mapParam;
};

}  // namespace velm
