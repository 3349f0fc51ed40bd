#pragma once

#include <string_view>
#include <vector>

#include "url/pattern/PatternProgram.h"

namespace velm {

/// Runs a program on a text by backtracking; PatternProgram.h describes how.
class PatternMatcher {
public:
    /// The text of the whole match and of each group, empty for a group that took no part in the match.
    using Groups = std::vector<std::string_view>;

    /// Whether the program matches the whole text. A match that exceeds a limit counts as no match.
    /// @param stepsLeft  the steps left for the caller's whole call, PatternLimits::kSteps at first; 0 after
    ///        a limit was exceeded
    /// @param groups  receives views of `text`; unchanged without a match; may be null. They are the same as
    ///        with std::regex if no repeated part of the expression can match the empty text
    /// Throws std::bad_alloc when memory runs out.
    static bool Match(const PatternProgram& program, std::string_view text, std::size_t& stepsLeft,
                      Groups* groups = nullptr);

private:
    using Operation = PatternInstruction::Operation;

    static constexpr std::uint32_t kNowhere = static_cast<std::uint32_t>(-1);

    struct Cursor {
        std::uint32_t next;      // instruction
        std::uint32_t position;  // in the text
    };

    struct Group {
        std::uint32_t begin = 0;
        std::uint32_t end = kNowhere;  // kNowhere: took no part
    };

    /// How many iterations of a quantifier began at a position. There are at most two: the second sets groups
    /// to the empty text, and further ones would change nothing.
    struct Iterations {
        std::uint32_t position = 0;
        std::uint8_t count = 0;
    };

    /// A backtracking point or an undo entry.
    struct Saved {
        enum class Kind : std::uint8_t {
            kBranch,
            kIteration,
            kUndoGroupBegin,
            kUndoGroupEnd,
            kUndoIterations
        };
        Kind kind;
        std::uint8_t count;   // of iterations
        std::uint16_t index;  // of an instruction, a group or a branch
        std::uint32_t position;
    };
    static_assert(PatternLimits::kInstructions <= 1U << 16);

    PatternMatcher(const PatternProgram& program, std::string_view text, std::size_t& stepsLeft,
                   bool tracksGroups);

    bool Run(Cursor cursor, bool whole);
    bool Step(Cursor& cursor);
    bool StepBranch(Cursor& cursor);
    void TakeBytes(std::uint32_t set, std::uint32_t otherWay, Cursor& cursor);
    bool StepCountedBranch(Cursor& cursor);
    bool StepGroup(Cursor& cursor);
    bool StepBackReference(Cursor& cursor);
    bool StepLookAhead(Cursor& cursor);
    bool BeginIteration(Cursor& cursor);
    bool Backtrack(std::size_t base, Cursor& cursor);
    void LeaveLookAhead(std::size_t base);

    void FollowTransitions(Cursor& cursor);
    std::uint16_t FindTransition(std::uint32_t instruction, unsigned char byte) const;

    bool Save(Saved::Kind kind, std::uint32_t index, std::uint32_t position, std::uint8_t count = 0);
    bool Spend(std::size_t steps);
    bool LimitExceeded();
    bool CanGoOn(std::uint32_t instruction, std::uint32_t position) const;
    bool IsInSet(std::uint32_t set, std::uint32_t position) const;
    bool Holds(const PatternInstruction& assertion, std::uint32_t position) const;

    const PatternProgram& m_program;
    std::string_view m_text;
    std::size_t& m_stepsLeft;
    bool m_tracksGroups;

    std::vector<Saved> m_saved;
    std::vector<Group> m_groups;
    std::vector<bool> m_visits;                // by position and branch: whether it was tried before
    std::vector<Iterations> m_iterations;      // by branch
    std::vector<std::uint16_t> m_transitions;  // by instruction and byte; empty if not worth their memory
};

}  // namespace velm
