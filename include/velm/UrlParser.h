#pragma once

#include <map>
#include <string>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Splits a URL into the five components of RFC 3986 and its query into parameters.
///
/// The components are those of the regular expression in RFC 3986, appendix B; nothing else is validated,
/// decoded or case-folded. Text is treated as bytes. Parsing does not backtrack and uses no stack per
/// character, so untrusted URLs of any length are safe.
///
/// Threads: one at a time per object.
class VELM_UTIL_API UrlParser {
public:
    /// Starts with all components empty.
    UrlParser();
    /// @{
    /// Copies all components and parameters.
    UrlParser(const UrlParser& other);
    UrlParser& operator=(const UrlParser& other);
    /// @}
    virtual ~UrlParser();

    /// Parses a URL and replaces the previous result.
    /// @param url  NUL-terminated; owned by the caller, not needed after the call; may be a string of this
    ///             object
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for null, for a line feed or carriage return in the fragment,
    ///         and when a part of the query, between two "&", is not a name, one "=" and a value. On failure
    ///         all components and parameters are empty.
    /// Throws std::bad_alloc when out of memory; the object's content is then unspecified.
    ErrorCode Parse(const char* url);

    // The components, NUL-terminated and never null; "" for an absent one as for an empty one. Valid until
    // the next Parse, an assignment to the object or its destruction.
    const char* Url() const;        ///< the whole URL
    const char* Scheme() const;     ///< without the trailing ":"
    const char* Authority() const;  ///< without the leading "//"
    const char* Path() const;       ///< with the leading "/", if any
    const char* Query() const;      ///< without the leading "?"
    const char* Fragment() const;   ///< without the leading "#"

    /// Returns the value of a parameter. A name that the query lacks is added with an empty value.
    /// @param name  NUL-terminated, not null; case-sensitive
    /// @return NUL-terminated, never null; valid until the next Parse, an assignment to the object or its
    ///         destruction
    /// Throws std::bad_alloc when out of memory.
    const char* Param(const char* name);

    /// Returns a copy of the parameters. The last value of a repeated name wins.
    /// Throws std::bad_alloc when out of memory.
    const std::map<std::string, std::string> ParamMap() const;

    /// Does nothing.
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
