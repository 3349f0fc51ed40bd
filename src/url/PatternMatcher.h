#pragma once

#include <string_view>
#include <vector>

#include "url/PatternProgram.h"

namespace velm {

/// Runs one program on one text, by backtracking with a stack on the heap.
///
/// A program without look-ahead and back-references notes at which positions each of its branches was taken.
/// What follows a branch depends on the position alone, so a branch that is met again there has failed
/// before, or is being tried just now: it is not taken twice, and the time is bounded by branches *
/// characters. Other programs try every way that std::regex tries, as far as the limits go.
class PatternMatcher {
public:
    /// The text of the whole match and of each group, empty where a group took no part.
    using Groups = std::vector<std::string_view>;

    /// Whether the program matches the whole text. A match that would exceed a limit is none.
    /// @param groups  receives views of `text`, unchanged without a match; may be null. They are those of
    ///        std::regex for programs in which no repeated part can be empty
    /// Throws std::bad_alloc when memory runs out.
    static bool Match(const PatternProgram& program, std::string_view text, Groups* groups = nullptr);

private:
    using Operation = PatternInstruction::Operation;

    static constexpr std::uint32_t kNowhere = static_cast<std::uint32_t>(-1);

    struct Group {
        std::uint32_t begin = 0;
        std::uint32_t end = kNowhere;  // kNowhere: took no part
    };

    /// How often a quantifier began a turn at a position. The second turn there is the last: it sets groups
    /// to the empty text, further ones would change nothing.
    struct Turns {
        std::uint32_t position = 0;
        std::uint8_t count = 0;
    };

    /// What backtracking goes back to or puts back.
    struct Saved {
        enum class Kind : std::uint8_t { kBranch, kTurn, kGroupBegin, kGroupEnd, kTurns };
        Kind kind;
        std::uint8_t count;   // of the turns
        std::uint16_t index;  // of an instruction, a group or a branch
        std::uint32_t position;
    };
    static_assert(PatternLimits::kInstructions <= 1U << 16);

    PatternMatcher(const PatternProgram& program, std::string_view text, bool tracksGroups);

    /// Where the matcher stands.
    struct Cursor {
        std::uint32_t next;      // instruction
        std::uint32_t position;  // in the text
    };

    bool Run(Cursor cursor, bool whole);
    bool Step(Cursor& cursor);
    bool StepBranch(Cursor& cursor);
    void TakeBytes(std::uint32_t set, std::uint32_t otherWay, Cursor& cursor);
    bool StepCountedBranch(Cursor& cursor);
    bool StepGroup(Cursor& cursor);
    bool StepBackReference(Cursor& cursor);
    bool StepLookAhead(Cursor& cursor);
    bool BeginTurn(Cursor& cursor);
    bool Backtrack(std::size_t base, Cursor& cursor);
    void LeaveLookAhead(std::size_t base);
    bool GiveUp();

    bool Save(Saved::Kind kind, std::uint32_t index, std::uint32_t position, std::uint8_t count = 0);
    bool CanGoOn(std::uint32_t instruction, std::uint32_t position) const;
    bool IsInSet(std::uint32_t set, std::uint32_t position) const;
    bool Holds(const PatternInstruction& assertion, std::uint32_t position) const;

    const PatternProgram& m_program;
    std::string_view m_text;
    bool m_tracksGroups;

    std::uint32_t m_begin = 0;  // of the text, or of the look-ahead
    std::size_t m_steps = 0;
    std::vector<Saved> m_saved;
    std::vector<Group> m_groups;
    std::vector<bool> m_visits;  // by position and branch
    std::vector<Turns> m_turns;  // by branch
};

}  // namespace velm
