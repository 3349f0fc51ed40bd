#pragma once

#include <string>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Reads links that are handed to the client, and decides which addresses it accepts. Links and addresses are
/// matched, in full and as bytes, against regular expressions (ECMAScript) that are kept scrambled.
///
/// Every text may come from a stranger, patterns included. Matching never uses the stack per character and is
/// bounded in time, to well under 100 ms, whatever the texts are:
/// - a pattern is refused above 16,384 bytes, above 65,536 instructions when its counted repetitions are
/// written
///   out, and when look-ahead is nested more than 16 deep;
/// - a match is given up, as not matching, after 16.7 million steps. A pattern takes a few steps for each
///   character of the address, so addresses of a megabyte are matched. Back-references and look-ahead work on
///   short text; where they lead to more ways than the steps suffice for, they are refused in the same way.
///
/// Threads: any number at once, each with output strings of its own.
class VELM_UTIL_API UrlSchemeUtil {
public:
    UrlSchemeUtil& operator=(const UrlSchemeUtil& other);

    /// Reads a link and checks the address that it leads to. Three forms are read:
    ///
    ///     velm://connect/BODY?title=TITLE&ticket=TICKET
    ///     velm:BODY;TITLE;TICKET
    ///     velm://resume?title=TITLE&ticket=TICKET          for the caller's own address
    ///
    /// @param source  the link
    /// @param url  on entry, its beginning chooses the scheme of the address: "http:" or "https". It receives
    ///        the scheme, "://" and BODY; a resume link leaves it as it is
    /// @param param1, param2  receive TITLE and TICKET
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for another beginning of `url` or another form of link, with
    /// the
    ///         outputs unchanged, and for an address that checkPavix refuses, with the outputs set
    /// Throws std::bad_alloc when memory runs out.
    static ErrorCode read(const std::string& source, std::string& url, std::string& param1,
                          std::string& param2);

    /// Whether a pattern of the caller's covers the whole of an address.
    /// @param pattern  scrambled: each character from "!" to "~" rotated by 47 places among these 94. It ends
    /// at
    ///        its first NUL
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when it does not, or when the pattern is not valid or exceeds
    /// a
    ///         limit
    /// Throws std::bad_alloc when memory runs out.
    static ErrorCode checkDomain(const std::string& url, const std::string& pattern);

    /// Whether the client accepts an address.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when it does not
    /// Throws std::bad_alloc when memory runs out.
    static ErrorCode checkPavix(const std::string& url);

private:
    static ErrorCode readLocal(const std::string& source, std::string& url, std::string& param1,
                               std::string& param2);
};

}  // namespace velm
