#pragma once

#include <string>

#include "velm/UtilErrorCode.h"

namespace velm {

/// Reads links that are handed to the client, and decides which addresses it accepts. Links and addresses are
/// matched, in full and as bytes, against regular expressions that are kept scrambled.
///
/// Patterns have the ECMAScript grammar of std::regex with its default flags, in the "C" locale. In detail:
/// - In a look-ahead, `^`, `\b` and `\B` see the text before it, as in ECMAScript. `\cX` needs a letter and
///   is that control character. `\u` above 00FF is invalid: text is bytes. libstdc++ differs in all three.
/// - As in std::regex, a back-reference is invalid before the end of its group and fails if the group has no
///   text. As in libstdc++, a group keeps its text when a loop enters it again and when matching backtracks
///   to before the look-ahead that set it, unless that is part of a look-ahead that fails.
///
/// All text is untrusted, patterns included. Matching uses no stack per character, and a call takes well
/// under 100 ms. Anything beyond these limits counts as no match:
/// - a pattern of more than 16,384 bytes, of more than 65,536 instructions once its counted repetitions are
///   written out, with look-ahead nested more than 16 deep, or with so many nested repetitions that compiling
///   it would move millions of instructions;
/// - a call of more than 4,194,304 steps. A byte with a single continuation costs a quarter of a step in most
///   patterns, so a link or an address of a megabyte is matched. A byte with two continuations costs about
///   five. Patterns like "(a+)+b", where every byte has two, and those with look-ahead or back-references
///   suit shorter text;
/// - a match that has two continuations at any byte, if the number of the pattern's branches (alternatives,
///   and repetitions once the counted ones are written out) times the bytes of the address exceeds
///   67,108,864.
///
/// Threads: any number at once, each with output strings of its own.
class VELM_UTIL_API UrlSchemeUtil {
public:
    /// Does nothing: an object has no state.
    UrlSchemeUtil& operator=(const UrlSchemeUtil& other);

    /// Reads a link and checks the address that it leads to. There are three forms:
    ///
    ///     velm://connect/BODY?title=TITLE&ticket=TICKET
    ///     velm:BODY;TITLE;TICKET
    ///     velm://resume?title=TITLE&ticket=TICKET          for the caller's own address
    ///
    /// @param source  the link
    /// @param url  on entry, starts with "http:" or "https", which selects the scheme of the address. It
    ///             receives the scheme, "://" and BODY; a resume link leaves it unchanged
    /// @param param1  receives TITLE: one or more ASCII letters, digits, "_" and "-"; nothing is decoded
    /// @param param2  receives TICKET: one or more of the same characters, ".", "~" and "="
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM if `url` starts otherwise or the link has another form, with
    ///         all outputs unchanged, or if checkPavix would refuse the address, with the outputs set. To
    ///         tell these apart, pass an empty `param1`: it is empty afterwards unless `source` is a link
    /// Throws std::bad_alloc when memory runs out.
    static ErrorCode read(const std::string& source, std::string& url, std::string& param1,
                          std::string& param2);

    /// Whether a pattern matches the whole of an address.
    /// @param pattern  scrambled: each character from "!" to "~" rotated by 47 places among these 94, as
    ///                 `velmdiag link --scramble` prints it. Ends at its first NUL
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM if it does not match or is invalid
    /// Throws std::bad_alloc when memory runs out.
    static ErrorCode checkDomain(const std::string& url, const std::string& pattern);

    /// Whether the client accepts an address.
    /// @return 0; VELM_ERROR_UTIL_INVALID_PARAM if not
    /// Throws std::bad_alloc when memory runs out.
    static ErrorCode checkPavix(const std::string& url);

private:
    static ErrorCode readLocal(const std::string& source, std::string& url, std::string& param1,
                               std::string& param2);
};

}  // namespace velm
