#pragma once

#include <string>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Reads links that are handed to the client, and decides which addresses it accepts. Links and addresses are
/// matched, in full and as bytes, against regular expressions (ECMAScript) that are kept scrambled.
///
/// Every text may come from a stranger, patterns included: whatever they are, matching uses no stack per
/// character and takes well under 100 ms. What would take more is refused, as if it did not match:
/// - a pattern of more than 16,384 bytes, or of more than 65,536 instructions once its counted repetitions
///   are written out, or that nests look-ahead more than 16 deep, or whose parts repeat each other so often
///   that compiling it would take millions of moves;
/// - a match of more than 8,388,608 steps, or with more than 524,288 ways left open. Most patterns take
///   one to seven steps for a byte of the address and leave nothing open, so an address of a megabyte is
///   matched. Patterns that leave a way open at every byte, such as "(a+)+b", and those with look-ahead or
///   back-references suit shorter ones;
/// - a match that leaves a way open, when the pattern's branches (its alternatives, and its repetitions once
///   the counted ones are written out) times the bytes of the address are more than 67,108,864.
///
/// Threads: any number at once, each with output strings of its own.
class VELM_UTIL_API UrlSchemeUtil {
public:
    /// There is nothing in an object to copy.
    UrlSchemeUtil& operator=(const UrlSchemeUtil& other);

    /// Reads a link and checks the address that it leads to. Three forms are read:
    ///
    ///     velm://connect/BODY?title=TITLE&ticket=TICKET
    ///     velm:BODY;TITLE;TICKET
    ///     velm://resume?title=TITLE&ticket=TICKET          for the caller's own address
    ///
    /// @param source  the link
    /// @param url  on entry, its beginning chooses the scheme of the address: "http:" or "https". It receives
    ///             the scheme, "://" and BODY; a resume link leaves it as it is
    /// @param param1, param2  receive TITLE and TICKET
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM for another beginning of `url` or another form of link, all
    ///         outputs unchanged, and for an address that checkPavix refuses, the outputs being set
    /// Throws std::bad_alloc when memory runs out.
    static ErrorCode read(const std::string& source, std::string& url, std::string& param1,
                          std::string& param2);

    /// Whether a pattern of the caller's covers the whole of an address.
    /// @param pattern  scrambled: each character from "!" to "~" rotated by 47 places among these 94. It ends
    ///                 at its first NUL
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM when it does not, and for a pattern that is not valid
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
