#include "url/PatternMatcher.h"

#include <algorithm>
#include <utility>

namespace velm {
namespace {

constexpr std::size_t kStepsToSave = 2;  // saving and going back take longer than a step
constexpr std::uint8_t kMostTurnsAtAPosition = 2;

std::uint32_t Target(std::uint32_t from, const PatternInstruction& instruction) {
    return from + static_cast<std::uint32_t>(instruction.offset);
}

}  // namespace

bool PatternMatcher::Match(const PatternProgram& program, std::string_view text, Groups* groups) {
    if (text.size() > PatternLimits::kSteps) {  // a match takes a step for each character
        return false;
    }
    PatternMatcher matcher(program, text, groups != nullptr || program.hasBackReference);
    if (!matcher.Run({0, 0}, true)) {
        return false;
    }
    if (groups != nullptr) {
        groups->assign(program.groups, std::string_view());
        groups->front() = text;
        for (std::size_t i = 1; i < program.groups; ++i) {
            const Group& group = matcher.m_groups[i];
            (*groups)[i] = group.end == kNowhere ? std::string_view()
                                                 : text.substr(group.begin, group.end - group.begin);
        }
    }
    return true;
}

PatternMatcher::PatternMatcher(const PatternProgram& program, std::string_view text, bool tracksGroups)
    : m_program(program),
      m_text(text),
      m_tracksGroups(tracksGroups),
      m_groups(program.groups),
      m_turns(program.IsRegular() ? 0 : program.branches) {}

/// Runs from the cursor to kAccept, at the end of the text when the `whole` is to match.
bool PatternMatcher::Run(Cursor cursor, bool whole) {
    const std::size_t base = m_saved.size();
    for (;;) {
        if (++m_steps > PatternLimits::kSteps) {
            return false;
        }
        const Operation operation = m_program.instructions[cursor.next].operation;
        if (operation == Operation::kAccept && (!whole || cursor.position == m_text.size())) {
            LeaveLookAhead(base);
            return true;
        }
        if ((operation == Operation::kAccept || !Step(cursor)) && !Backtrack(base, cursor)) {
            return false;
        }
    }
}

/// Runs one instruction; false when it does not match.
inline bool PatternMatcher::Step(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next];
    switch (instruction.operation) {
        case Operation::kCharacter:
            if (cursor.position == m_text.size() ||
                static_cast<unsigned char>(m_text[cursor.position]) != instruction.argument) {
                return false;
            }
            ++cursor.position;
            break;
        case Operation::kSet:
            if (!IsInSet(instruction.argument, cursor.position)) {
                return false;
            }
            ++cursor.position;
            break;
        case Operation::kJump:
            cursor.next = Target(cursor.next, instruction);
            return true;
        case Operation::kAlternative:
        case Operation::kRepeat:
        case Operation::kRepeatSet:
        case Operation::kRepeatLazily:
            return m_program.IsRegular() ? StepBranch(cursor) : StepCountedBranch(cursor);
        case Operation::kGroupBegin:
        case Operation::kGroupEnd:
            return StepGroup(cursor);
        case Operation::kBackReference:
            return StepBackReference(cursor);
        case Operation::kLookAhead:
        case Operation::kNoLookAhead:
            return StepLookAhead(cursor);
        default:
            if (!Holds(instruction, cursor.position)) {
                return false;
            }
            break;
    }
    ++cursor.next;
    return true;
}

/// Takes the first way of a branch and saves the second, as far as they can go on.
inline bool PatternMatcher::StepBranch(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next];
    std::uint32_t first = cursor.next + 1;
    std::uint32_t second = Target(cursor.next, instruction);
    if (instruction.operation == Operation::kRepeatLazily) {
        std::swap(first, second);
    }
    if (!CanGoOn(first, cursor.position)) {
        cursor.next = second;
        return CanGoOn(second, cursor.position);
    }
    if (!CanGoOn(second, cursor.position)) {
        if (instruction.operation == Operation::kRepeatSet) {
            TakeBytes(m_program.instructions[first].argument, second, cursor);
        } else {
            cursor.next = first;
        }
        return true;
    }
    const std::size_t visits = (m_text.size() + 1) * m_program.branches;
    if (visits > PatternLimits::kVisits) {
        return GiveUp();
    }
    m_visits.resize(visits);
    auto visited = m_visits[std::size_t{cursor.position} * m_program.branches + instruction.argument];
    if (visited) {
        return false;
    }
    visited = true;
    cursor.next = first;
    return Save(Saved::Kind::kBranch, second, cursor.position);
}

/// Takes bytes of a set for as long as taking them is the only way.
inline void PatternMatcher::TakeBytes(std::uint32_t set, std::uint32_t otherWay, Cursor& cursor) {
    const auto& bytes = m_program.sets[set];
    const auto& otherBytes = m_program.next[otherWay].bytes;
    const std::uint32_t begin = cursor.position;
    while (cursor.position != m_text.size()) {
        const auto byte = static_cast<unsigned char>(m_text[cursor.position]);
        if (!bytes[byte] || otherBytes[byte]) {
            break;
        }
        ++cursor.position;
    }
    m_steps += cursor.position - begin;
}

/// The same in a program that is not regular: every way counts, but a quantifier's turns are bounded.
bool PatternMatcher::StepCountedBranch(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next];
    const std::uint32_t behind = Target(cursor.next, instruction);
    if (instruction.operation == Operation::kRepeatLazily) {
        const std::uint32_t repeat = std::exchange(cursor.next, behind);
        return Save(Saved::Kind::kTurn, repeat, cursor.position);
    }
    if (!Save(Saved::Kind::kBranch, behind, cursor.position)) {
        return false;
    }
    if (instruction.operation != Operation::kAlternative) {
        return BeginTurn(cursor);
    }
    ++cursor.next;
    return true;
}

/// Begins one more turn of the quantifier that the cursor is at, unless it would change nothing.
bool PatternMatcher::BeginTurn(Cursor& cursor) {
    const std::uint32_t branch = m_program.instructions[cursor.next].argument;
    Turns& turns = m_turns[branch];
    const Turns before = turns;
    if (before.position != cursor.position || before.count == 0) {
        turns = {cursor.position, 1};
    } else if (before.count < kMostTurnsAtAPosition) {
        ++turns.count;
    } else {
        return false;
    }
    ++cursor.next;
    return Save(Saved::Kind::kTurns, branch, before.position, before.count);
}

bool PatternMatcher::StepGroup(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next++];
    if (!m_tracksGroups) {
        return true;
    }
    Group& group = m_groups[instruction.argument];
    if (instruction.operation == Operation::kGroupBegin) {
        const std::uint32_t before = std::exchange(group.begin, cursor.position);
        return Save(Saved::Kind::kGroupBegin, instruction.argument, before);
    }
    const std::uint32_t before = std::exchange(group.end, cursor.position);
    return Save(Saved::Kind::kGroupEnd, instruction.argument, before);
}

bool PatternMatcher::StepBackReference(Cursor& cursor) {
    const Group& group = m_groups[m_program.instructions[cursor.next].argument];
    if (group.end == kNowhere) {
        return false;
    }
    const std::string_view expected = m_text.substr(group.begin, group.end - group.begin);
    m_steps += expected.size();
    if (!m_text.substr(cursor.position).starts_with(expected)) {
        return false;
    }
    cursor.position += static_cast<std::uint32_t>(expected.size());
    ++cursor.next;
    return true;
}

/// The compiler bounds the depth of this recursion. Groups keep what a look-ahead put into them, also when
/// the matcher goes back behind it: that is how libstdc++ has it.
bool PatternMatcher::StepLookAhead(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next];
    const std::uint32_t begin = std::exchange(m_begin, cursor.position);
    const bool matches = Run({cursor.next + 1, cursor.position}, false);
    m_begin = begin;
    cursor.next = Target(cursor.next, instruction);
    return matches == (instruction.operation == Operation::kLookAhead);
}

/// Forgets the ways that a look-ahead which matched has left, but not its groups.
void PatternMatcher::LeaveLookAhead(std::size_t base) {
    for (; m_saved.size() > base; m_saved.pop_back()) {
        const Saved& saved = m_saved.back();
        if (saved.kind == Saved::Kind::kTurns) {
            m_turns[saved.index] = {saved.position, saved.count};
        }
    }
}

/// Whether an assertion holds at a position.
bool PatternMatcher::Holds(const PatternInstruction& assertion, std::uint32_t position) const {
    if (assertion.operation == Operation::kTextBegin) {
        return position == m_begin;
    }
    if (assertion.operation == Operation::kTextEnd) {
        return position == m_text.size();
    }
    const bool before = position != m_begin && IsInSet(assertion.argument, position - 1);
    const bool after = IsInSet(assertion.argument, position);
    return (before != after) == (assertion.operation == Operation::kWordBoundary);
}

/// Puts back what was changed since the last way that is left, and goes there; false when there is none above
/// `base`.
inline bool PatternMatcher::Backtrack(std::size_t base, Cursor& cursor) {
    while (m_saved.size() > base) {
        const Saved saved = m_saved.back();
        m_saved.pop_back();
        switch (saved.kind) {
            case Saved::Kind::kBranch:
                cursor = {saved.index, saved.position};
                return true;
            case Saved::Kind::kTurn:
                cursor = {saved.index, saved.position};
                if (BeginTurn(cursor)) {
                    return true;
                }
                break;
            case Saved::Kind::kTurns:
                m_turns[saved.index] = {saved.position, saved.count};
                break;
            case Saved::Kind::kGroupBegin:
                m_groups[saved.index].begin = saved.position;
                break;
            case Saved::Kind::kGroupEnd:
                m_groups[saved.index].end = saved.position;
                break;
        }
    }
    return false;
}

/// Leaves no steps, so that no other way is tried.
bool PatternMatcher::GiveUp() {
    m_steps = PatternLimits::kSteps;
    return false;
}

/// false when there is no room for more: the match is given up.
inline bool PatternMatcher::Save(Saved::Kind kind, std::uint32_t index, std::uint32_t position,
                                 std::uint8_t count) {
    if (m_saved.empty()) {  // room for what most programs need; growing would copy
        m_saved.reserve(std::min(PatternLimits::kSaved, 2 * m_text.size() + 16));
    }
    if (m_saved.size() == PatternLimits::kSaved) {
        return GiveUp();
    }
    m_steps += kStepsToSave;
    m_saved.push_back({kind, count, static_cast<std::uint16_t>(index), position});
    return true;
}

/// Whether a match can go on at an instruction, by the next byte of the text.
inline bool PatternMatcher::CanGoOn(std::uint32_t instruction, std::uint32_t position) const {
    if (m_program.next.empty()) {
        return true;
    }
    const PatternNext& next = m_program.next[instruction];
    return position == m_text.size() ? next.end : next.bytes[static_cast<unsigned char>(m_text[position])];
}

inline bool PatternMatcher::IsInSet(std::uint32_t set, std::uint32_t position) const {
    return position != m_text.size() && m_program.sets[set][static_cast<unsigned char>(m_text[position])];
}

}  // namespace velm
