/// @file
/// A regular expression that is safe to take from strangers and to run on their text.
///
/// PatternCompiler reads the ECMAScript grammar as std::regex does, with its default flags and the traits of
/// the "C" locale; PatternMatcher finds its full matches. Unlike std::regex, neither uses the stack per
/// character or takes time without a bound. What would exceed one of the limits below is refused.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace velm {

struct PatternLimits {
    static constexpr std::size_t kExpressionSize = 1U << 14;  ///< in bytes
    static constexpr std::size_t kInstructions = 1U << 16;    ///< of the compiled expression
    static constexpr std::size_t kCompileWork = 1U << 22;  ///< instructions moved or copied by the compiler
    static constexpr unsigned int kLookAheadDepth = 16;    ///< look-ahead within look-ahead
    static constexpr std::size_t kSteps = 1U << 23;        ///< of one match: instructions run and ways saved
    static constexpr std::size_t kSaved = 1U << 19;        ///< ways to go back to, at any time of a match
    static constexpr std::size_t kVisits = 1U << 26;       ///< branches * characters of one match
};

struct PatternInstruction {
    enum class Operation : std::uint8_t {
        kCharacter,     ///< the byte `argument`
        kSet,           ///< a byte of set `argument`
        kAlternative,   ///< a branch: goes on with the next instruction; failing that, at `offset`
        kRepeat,        ///< the same, where the next instruction begins one more turn of a quantifier
        kRepeatSet,     ///< a kRepeat whose turn is one kSet
        kRepeatLazily,  ///< goes on at `offset`; failing that, one more turn
        kJump,          ///< goes on at `offset`
        kGroupBegin,    ///< of group `argument`
        kGroupEnd,      ///< of group `argument`
        kTextBegin,     ///< or the begin of the look-ahead, as in libstdc++
        kTextEnd,
        kWordBoundary,  ///< between a byte of set `argument` and another
        kNoWordBoundary,
        kLookAhead,      ///< goes on at `offset` when what follows, up to its kAccept, matches here
        kNoLookAhead,    ///< goes on at `offset` when it does not
        kBackReference,  ///< the text of group `argument`, which must have one
        kAccept,
    };

    Operation operation;
    std::uint32_t argument = 0;  ///< of a branch: its number
    std::int32_t offset = 0;     ///< from this instruction
};

/// How a match can go on at an instruction. It may hold more than that, never less.
struct PatternNext {
    std::bitset<256> bytes;  ///< the next one
    bool end = false;        ///< of the text

    bool operator==(const PatternNext&) const = default;
};

struct PatternProgram {
    std::vector<PatternInstruction> instructions;
    std::vector<std::bitset<256>> sets;
    std::vector<PatternNext> next;  ///< for each instruction; empty when not known
    std::uint32_t groups = 1;       ///< the whole match is group 0
    std::uint32_t branches = 0;     ///< kAlternative and the kRepeat...
    bool hasLookAhead = false;
    bool hasBackReference = false;

    /// Whether what follows an instruction depends on the position in the text alone.
    bool IsRegular() const { return !hasLookAhead && !hasBackReference; }
};

}  // namespace velm
