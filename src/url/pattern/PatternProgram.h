/// @file
/// A regular-expression engine for untrusted patterns and untrusted text: it finds full matches only, uses no
/// stack per character, and its time and memory are bounded.
///
/// **Grammar.** ECMAScript as std::regex reads it with default flags, with the classes of the "C" locale.
/// UrlSchemeUtil.h lists what differs. Text is bytes.
///
/// **Compiled form.** PatternCompiler reads the expression once and emits instructions for a backtracking
/// machine. `(ab|c)*d` becomes
///
///      0  kRepeat       +9   one more iteration; failing that, 9
///      1  kGroupBegin   1
///      2  kAlternative  +4   the next instruction; failing that, 6
///      3  kCharacter    a
///      4  kCharacter    b
///      5  kJump         +2
///      6  kCharacter    c
///      7  kGroupEnd     1
///      8  kJump         -8
///      9  kCharacter    d
///     10  kAccept
///
/// Counted repetitions are written out. Offsets are relative, so a complete part can be moved and copied.
///
/// **Matching.** PatternMatcher runs the instructions depth first. At a branch it takes the preferred
/// alternative and saves the other as a backtracking point, on a stack in the heap that also holds the undo
/// entries for captured groups. Three measures prevent exponential time:
/// - Look-ahead by one byte. For each instruction, the compiler computes which bytes can come next (a FIRST
///   set); an alternative whose set lacks the next byte is never tried, and most patterns never backtrack.
/// - Memoization. In a regular program (no look-ahead, no back-reference) the outcome at a branch depends on
///   the position alone, so no branch is tried twice at a position: O(branches * bytes).
/// - A budget of steps for everything else, the stack included. It covers a whole call, however many patterns
///   the call matches.
///
/// On long text, steps that a single byte decides are cached by instruction and byte, like the transitions of
/// a lazy DFA, at two loads per byte.
///
/// **Limits.** See PatternLimits. A match that exceeds one counts as no match.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velm {

struct PatternLimits {
    static constexpr std::size_t kExpressionSize = 1U << 14;  ///< in bytes
    static constexpr std::size_t kInstructions = 1U << 16;    ///< of a program
    static constexpr std::size_t kCompileWork = 1U << 22;  ///< instructions moved or copied by the compiler
    static constexpr unsigned int kLookAheadDepth = 16;    ///< look-ahead within look-ahead
    static constexpr std::size_t kSteps = 1U << 22;        ///< of a call; about 10 ns each. Saving takes two
    static constexpr std::size_t kVisits = 1U << 26;       ///< branches * bytes, if any branch is memoized
};

/// A set of bytes.
using PatternSet = std::bitset<256>;

struct PatternInstruction {
    enum class Operation : std::uint8_t {
        kCharacter,     ///< the byte `argument`
        kSet,           ///< a byte of set `argument`
        kAlternative,   ///< a branch: the next instruction; failing that, `offset`
        kRepeat,        ///< a branch: one more iteration, at the next instruction; failing that, `offset`
        kRepeatSet,     ///< a kRepeat whose iteration is one kSet
        kRepeatLazily,  ///< a branch: `offset`; failing that, one more iteration
        kJump,          ///< to `offset`
        kGroupBegin,    ///< of group `argument`
        kGroupEnd,      ///< of group `argument`
        kTextBegin,
        kTextEnd,
        kWordBoundary,  ///< between a byte of set `argument` and another
        kNoWordBoundary,
        kLookAhead,          ///< to `offset` if the instructions up to the kAccept before it match here
        kNegativeLookAhead,  ///< to `offset` if they do not
        kBackReference,      ///< the text of group `argument`; fails if the group has none
        kAccept,
    };

    Operation operation;
    std::uint32_t argument = 0;  ///< of a branch: its number
    std::int32_t offset = 0;     ///< relative to this instruction
};

/// A superset of the FIRST set of an instruction: what can come next in a match.
struct PatternNext {
    PatternSet bytes;
    bool end = false;  ///< of the text

    bool operator==(const PatternNext&) const = default;
};

struct PatternProgram {
    std::vector<PatternInstruction> instructions;
    std::vector<PatternSet> sets;
    std::vector<PatternNext> next;  ///< by instruction; empty if unknown
    std::uint32_t groups = 1;       ///< the whole match is group 0
    std::uint32_t branches = 0;
    bool hasLookAhead = false;
    bool hasBackReference = false;

    /// Whether the outcome at an instruction depends on the position in the text alone.
    bool IsRegular() const { return !hasLookAhead && !hasBackReference; }
};

}  // namespace velm
