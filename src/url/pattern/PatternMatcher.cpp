#include "url/pattern/PatternMatcher.h"

#include <algorithm>
#include <utility>

namespace velm {
namespace {

constexpr std::size_t kStepsToSave = 2;   // saving and backtracking take longer than one step
constexpr std::size_t kBytesPerStep = 4;  // where bytes alone are compared
constexpr std::uint8_t kMostIterationsAtAPosition = 2;

// The transitions of one program: at most 128 KB, and only for text long enough to repay clearing them.
constexpr std::size_t kMostInstructionsWithTransitions = 256;
constexpr std::size_t kLeastTextWithTransitions = 4096;
constexpr std::size_t kBytes = 256;
constexpr std::uint16_t kUnknown = 0;
constexpr std::uint16_t kNone = 1;   // the byte alone does not decide
constexpr std::uint16_t kFirst = 2;  // leads to instruction 0

std::uint32_t Target(std::uint32_t from, const PatternInstruction& instruction) {
    return from + static_cast<std::uint32_t>(instruction.offset);
}

}  // namespace

bool PatternMatcher::Match(const PatternProgram& program, std::string_view text, std::size_t& stepsLeft,
                           Groups* groups) {
    if (text.size() / kBytesPerStep > stepsLeft) {
        stepsLeft = 0;
        return false;
    }
    PatternMatcher matcher(program, text, stepsLeft, groups != nullptr || program.hasBackReference);
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

PatternMatcher::PatternMatcher(const PatternProgram& program, std::string_view text, std::size_t& stepsLeft,
                               bool tracksGroups)
    : m_program(program),
      m_text(text),
      m_stepsLeft(stepsLeft),
      m_tracksGroups(tracksGroups),
      m_groups(program.groups),
      m_iterations(program.IsRegular() ? 0 : program.branches) {
    const std::size_t instructions = program.instructions.size();
    if (!program.next.empty() && instructions <= kMostInstructionsWithTransitions &&
        text.size() >= kLeastTextWithTransitions) {
        m_transitions.resize(instructions * kBytes, kUnknown);
    }
}

/// Runs from the cursor to kAccept, which must be at the end of the text if `whole`.
bool PatternMatcher::Run(Cursor cursor, bool whole) {
    const std::size_t base = m_saved.size();
    for (;;) {
        FollowTransitions(cursor);
        if (!Spend(1)) {
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

/// Consumes bytes as long as each alone decides the next instruction.
inline void PatternMatcher::FollowTransitions(Cursor& cursor) {
    if (m_transitions.empty()) {
        return;
    }
    const auto* const text = reinterpret_cast<const unsigned char*>(m_text.data());
    const auto* const end = text + m_text.size();
    const auto* at = text + cursor.position;
    while (at != end) {
        std::uint16_t* const row = &m_transitions[cursor.next * kBytes];
        const std::uint32_t same = kFirst + cursor.next;
        while (at != end && row[*at] == same) {  // a loop over one set, in which no load waits for another
            ++at;
        }
        if (at == end) {
            break;
        }
        if (row[*at] == kUnknown) {
            row[*at] = FindTransition(cursor.next, *at);
        }
        if (row[*at] == kNone) {
            break;
        }
        cursor.next = row[*at++] - std::uint32_t{kFirst};
    }
    const auto position = static_cast<std::uint32_t>(at - text);
    Spend((position - std::exchange(cursor.position, position)) / kBytesPerStep);
}

/// Where a match continues after consuming a byte at an instruction: kFirst + the next instruction. kNone if
/// it fails, if there are several continuations, or if more than the byte decides.
std::uint16_t PatternMatcher::FindTransition(std::uint32_t instruction, unsigned char byte) const {
    // A loop around an empty part leads back to itself.
    for (std::size_t hops = 0; hops < m_program.instructions.size(); ++hops) {
        const PatternInstruction& at = m_program.instructions[instruction];
        const std::uint32_t target = Target(instruction, at);
        switch (at.operation) {
            case Operation::kCharacter:
            case Operation::kSet: {
                const PatternInstruction& next = m_program.instructions[instruction + 1];
                const std::uint32_t after =
                    next.operation == Operation::kJump ? Target(instruction + 1, next) : instruction + 1;
                return m_program.next[instruction].bytes[byte] ? static_cast<std::uint16_t>(kFirst + after)
                                                               : kNone;
            }
            case Operation::kJump:
                instruction = target;
                break;
            case Operation::kAlternative:
            case Operation::kRepeat:
            case Operation::kRepeatSet:
            case Operation::kRepeatLazily: {
                const bool next = m_program.next[instruction + 1].bytes[byte];
                if (next == m_program.next[target].bytes[byte]) {
                    return kNone;
                }
                instruction = next ? instruction + 1 : target;
                break;
            }
            case Operation::kGroupBegin:
            case Operation::kGroupEnd:
                if (m_tracksGroups) {
                    return kNone;
                }
                ++instruction;
                break;
            default:
                return kNone;
        }
    }
    return kNone;
}

/// Runs one instruction; false if it does not match.
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
        case Operation::kNegativeLookAhead:
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

/// Takes the preferred alternative of a branch and saves the other, unless the next byte rules one out.
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
        return LimitExceeded();
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

/// Consumes bytes of a set as long as that is the only continuation.
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
    Spend((cursor.position - begin) / kBytesPerStep);
}

/// A branch of a program that is not regular: every alternative is tried, but the number of iterations at a
/// position is limited.
bool PatternMatcher::StepCountedBranch(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next];
    const std::uint32_t behind = Target(cursor.next, instruction);
    if (instruction.operation == Operation::kRepeatLazily) {
        const std::uint32_t repeat = std::exchange(cursor.next, behind);
        return Save(Saved::Kind::kIteration, repeat, cursor.position);
    }
    if (!Save(Saved::Kind::kBranch, behind, cursor.position)) {
        return false;
    }
    if (instruction.operation != Operation::kAlternative) {
        return BeginIteration(cursor);
    }
    ++cursor.next;
    return true;
}

/// Begins another iteration of the quantifier at the cursor, unless it would change nothing.
bool PatternMatcher::BeginIteration(Cursor& cursor) {
    const std::uint32_t branch = m_program.instructions[cursor.next].argument;
    Iterations& iterations = m_iterations[branch];
    const Iterations before = iterations;
    if (before.position != cursor.position || before.count == 0) {
        iterations = {cursor.position, 1};
    } else if (before.count < kMostIterationsAtAPosition) {
        ++iterations.count;
    } else {
        return false;
    }
    ++cursor.next;
    return Save(Saved::Kind::kUndoIterations, branch, before.position, before.count);
}

bool PatternMatcher::StepGroup(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next++];
    if (!m_tracksGroups) {
        return true;
    }
    Group& group = m_groups[instruction.argument];
    if (instruction.operation == Operation::kGroupBegin) {
        const std::uint32_t before = std::exchange(group.begin, cursor.position);
        return Save(Saved::Kind::kUndoGroupBegin, instruction.argument, before);
    }
    const std::uint32_t before = std::exchange(group.end, cursor.position);
    return Save(Saved::Kind::kUndoGroupEnd, instruction.argument, before);
}

bool PatternMatcher::StepBackReference(Cursor& cursor) {
    const Group& group = m_groups[m_program.instructions[cursor.next].argument];
    if (group.end == kNowhere) {
        return false;
    }
    const std::string_view expected = m_text.substr(group.begin, group.end - group.begin);
    if (!Spend(expected.size() / kBytesPerStep) || !m_text.substr(cursor.position).starts_with(expected)) {
        return false;
    }
    cursor.position += static_cast<std::uint32_t>(expected.size());
    ++cursor.next;
    return true;
}

/// The compiler bounds the depth of this recursion. As in libstdc++, the groups of a look-ahead that matched
/// outlive backtracking to before it. So they have no undo entries, and one that fails restores all groups.
bool PatternMatcher::StepLookAhead(Cursor& cursor) {
    const PatternInstruction& instruction = m_program.instructions[cursor.next];
    std::vector<Group> groups;
    if (m_tracksGroups) {
        Spend(m_groups.size());
        groups = m_groups;
    }
    const bool matches = Run({cursor.next + 1, cursor.position}, false);
    if (!matches && m_tracksGroups) {
        m_groups = std::move(groups);
    }
    cursor.next = Target(cursor.next, instruction);
    return matches == (instruction.operation == Operation::kLookAhead);
}

/// Drops the backtracking points of a look-ahead that matched; its groups stay.
void PatternMatcher::LeaveLookAhead(std::size_t base) {
    for (; m_saved.size() > base; m_saved.pop_back()) {
        const Saved& saved = m_saved.back();
        if (saved.kind == Saved::Kind::kUndoIterations) {
            m_iterations[saved.index] = {saved.position, saved.count};
        }
    }
}

bool PatternMatcher::Holds(const PatternInstruction& assertion, std::uint32_t position) const {
    if (assertion.operation == Operation::kTextBegin) {
        return position == 0;
    }
    if (assertion.operation == Operation::kTextEnd) {
        return position == m_text.size();
    }
    const bool before = position != 0 && IsInSet(assertion.argument, position - 1);
    const bool after = IsInSet(assertion.argument, position);
    return (before != after) == (assertion.operation == Operation::kWordBoundary);
}

/// Rolls back to the latest backtracking point; false if there is none above `base`.
inline bool PatternMatcher::Backtrack(std::size_t base, Cursor& cursor) {
    while (m_saved.size() > base) {
        const Saved saved = m_saved.back();
        m_saved.pop_back();
        switch (saved.kind) {
            case Saved::Kind::kBranch:
                cursor = {saved.index, saved.position};
                return true;
            case Saved::Kind::kIteration:
                cursor = {saved.index, saved.position};
                if (BeginIteration(cursor)) {
                    return true;
                }
                break;
            case Saved::Kind::kUndoIterations:
                m_iterations[saved.index] = {saved.position, saved.count};
                break;
            case Saved::Kind::kUndoGroupBegin:
                m_groups[saved.index].begin = saved.position;
                break;
            case Saved::Kind::kUndoGroupEnd:
                m_groups[saved.index].end = saved.position;
                break;
        }
    }
    return false;
}

inline bool PatternMatcher::Save(Saved::Kind kind, std::uint32_t index, std::uint32_t position,
                                 std::uint8_t count) {
    if (m_saved.empty()) {  // enough for most programs, and growing would copy
        m_saved.reserve(std::min(PatternLimits::kSteps / kStepsToSave, 2 * m_text.size() + 16));
    }
    m_saved.push_back({kind, count, static_cast<std::uint16_t>(index), position});
    return Spend(kStepsToSave);
}

/// false once the budget is used up.
inline bool PatternMatcher::Spend(std::size_t steps) {
    if (steps >= m_stepsLeft) {
        return LimitExceeded();
    }
    m_stepsLeft -= steps;
    return true;
}

/// Ends the match, and with it the call that it is part of: no steps are left.
bool PatternMatcher::LimitExceeded() {
    m_stepsLeft = 0;
    return false;
}

/// Whether the next byte of the text is in the FIRST set of an instruction.
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
