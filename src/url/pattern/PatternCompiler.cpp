#include "url/pattern/PatternCompiler.h"

#include <algorithm>
#include <utility>

namespace velm {
namespace {

constexpr std::size_t kUnlimited = static_cast<std::size_t>(-1);
constexpr std::int32_t kNoJump = -1;
constexpr int kMostSweeps = 16;

/// The distance between two instructions.
std::int32_t Offset(std::size_t from, std::size_t to) {
    return static_cast<std::int32_t>(to) - static_cast<std::int32_t>(from);
}

}  // namespace

std::optional<PatternProgram> PatternCompiler::Compile(std::string_view expression) {
    if (expression.size() > PatternLimits::kExpressionSize) {
        return std::nullopt;
    }
    PatternCompiler compiler(expression);
    if (!compiler.CompileAll()) {
        return std::nullopt;
    }
    compiler.Link();
    if (compiler.m_program.IsRegular()) {
        compiler.PredictNext();
    }
    return std::move(compiler.m_program);
}

PatternCompiler::PatternCompiler(std::string_view expression)
    : m_cursor(expression), m_characters(m_cursor), m_open(1) {
    m_program.instructions.reserve(expression.size() + 16);
}

bool PatternCompiler::CompileAll() {
    while (!m_cursor.AtEnd()) {
        if (!CompileNext()) {
            return false;
        }
    }
    return m_open.size() == 1 && EndGroup() && Append({Operation::kAccept});
}

bool PatternCompiler::CompileNext() {
    const char c = m_cursor.Take();
    switch (c) {
        case '|':
            return EndAlternative();
        case '(':
            return BeginGroup();
        case ')':
            return m_open.size() > 1 && EndGroup();
        case '*':
        case '+':
        case '?':
        case '{':
            return CompileQuantifier(c);
        case '^':
        case '$':
            m_atom = kNone;
            return Append({c == '^' ? Operation::kTextBegin : Operation::kTextEnd});
        case '.': {
            PatternSet set;
            set.set().reset('\n').reset('\r');
            return AppendSetAtom(set);
        }
        case '[':
            return CompileBracket();
        case '\\':
            return CompileEscape();
        default:
            return AppendAtom({Operation::kCharacter, PatternCharacters::Byte(c)});
    }
}

bool PatternCompiler::BeginGroup() {
    Group group;
    group.first = m_program.instructions.size();
    bool appended = true;
    if (!m_cursor.Accept('?')) {
        group.kind = GroupKind::kCapturing;
        group.number = m_program.groups++;
        appended = Append({Operation::kGroupBegin, group.number});
    } else if (m_cursor.Accept('=')) {
        group.kind = GroupKind::kLookAhead;
        appended = Append({Operation::kLookAhead});
    } else if (m_cursor.Accept('!')) {
        group.kind = GroupKind::kNegativeLookAhead;
        appended = Append({Operation::kNegativeLookAhead});
    } else if (!m_cursor.Accept(':')) {
        return false;
    }
    if (group.IsLookAhead()) {
        m_program.hasLookAhead = true;
        ++m_lookAheadDepth;
    }
    group.alternative = m_program.instructions.size();
    m_open.push_back(group);
    m_atom = kNone;
    return appended && m_lookAheadDepth <= PatternLimits::kLookAheadDepth;
}

/// Closes the innermost group: its alternatives end here.
bool PatternCompiler::EndGroup() {
    const Group group = m_open.back();
    m_open.pop_back();
    auto& instructions = m_program.instructions;
    for (std::size_t jump = group.lastJump; jump != kNone;) {
        const std::int32_t before =
            std::exchange(instructions[jump].offset, Offset(jump, instructions.size()));
        jump = before == kNoJump ? kNone : static_cast<std::size_t>(before);
    }
    m_atom = group.IsLookAhead() ? kNone : group.first;  // an assertion cannot be repeated
    if (group.kind == GroupKind::kCapturing) {
        return Append({Operation::kGroupEnd, group.number});
    }
    if (!group.IsLookAhead()) {
        return true;
    }
    --m_lookAheadDepth;
    if (!Append({Operation::kAccept})) {
        return false;
    }
    instructions[group.first].offset = Offset(group.first, instructions.size());
    return true;
}

bool PatternCompiler::EndAlternative() {
    Group& group = m_open.back();
    auto& instructions = m_program.instructions;
    const std::int32_t before = group.lastJump == kNone ? kNoJump : static_cast<std::int32_t>(group.lastJump);
    if (!Insert(group.alternative, {Operation::kAlternative}) || !Append({Operation::kJump, 0, before})) {
        return false;
    }
    instructions[group.alternative].offset = Offset(group.alternative, instructions.size());
    group.lastJump = instructions.size() - 1;
    group.alternative = instructions.size();
    m_atom = kNone;
    return true;
}

bool PatternCompiler::CompileBracket() {
    const auto set = m_characters.ReadBracket();
    return set && AppendSetAtom(*set);
}

bool PatternCompiler::CompileEscape() {
    if (m_cursor.AtEnd()) {
        return false;
    }
    const char letter = m_cursor.Take();
    if (letter == 'b' || letter == 'B') {
        m_atom = kNone;
        return AppendSet(letter == 'b' ? Operation::kWordBoundary : Operation::kNoWordBoundary,
                         *PatternCharacters::FindEscapedClass('w'));
    }
    if (const auto set = PatternCharacters::FindEscapedClass(letter)) {
        return AppendSetAtom(*set);
    }
    if (letter >= '1' && letter <= '9') {
        return CompileBackReference(static_cast<std::uint32_t>(letter - '0'));
    }
    const auto character = m_characters.ReadEscape(letter);
    return character && AppendAtom({Operation::kCharacter, PatternCharacters::Byte(*character)});
}

/// Only a complete group can be referred to.
/// @param number  the first digit of its number; the cursor is at the second
bool PatternCompiler::CompileBackReference(std::uint32_t number) {
    while (const auto digit = m_cursor.AcceptDigit()) {
        number = std::min(number * 10 + *digit, m_program.groups);
    }
    const bool open = std::any_of(m_open.begin(), m_open.end(), [number](const Group& group) {
        return group.kind == GroupKind::kCapturing && group.number == number;
    });
    if (number >= m_program.groups || open) {
        return false;
    }
    m_program.hasBackReference = true;
    return AppendAtom({Operation::kBackReference, number});
}

bool PatternCompiler::CompileQuantifier(char c) {
    if (m_atom == kNone) {
        return false;
    }
    if (c == '{') {
        return CompileInterval();
    }
    const Operation operation = m_cursor.Accept('?') ? Operation::kRepeatLazily : Operation::kRepeat;
    auto& instructions = m_program.instructions;
    if (c == '+' && instructions.size() == m_atom + 1) {
        return RepeatAtom(1, kUnlimited, operation);
    }
    if (c == '+') {  // the atom; repeat: back to the atom
        return Append({operation, 0, 2}) &&
               Append({Operation::kJump, 0, Offset(instructions.size(), m_atom)});
    }
    if (!Insert(m_atom, {operation})) {
        return false;
    }
    if (c == '*' && !Append({Operation::kJump, 0, Offset(instructions.size(), m_atom)})) {
        return false;
    }
    instructions[m_atom].offset = Offset(m_atom, instructions.size());
    return true;
}

/// "{least}", "{least,}" or "{least,most}", after its "{".
bool PatternCompiler::CompileInterval() {
    const auto least = ReadCount();
    if (!least) {
        return false;
    }
    const std::size_t most = m_cursor.Accept(',') ? ReadCount().value_or(kUnlimited) : *least;
    if (!m_cursor.Accept('}') || most < *least) {
        return false;
    }
    return RepeatAtom(*least, most, m_cursor.Accept('?') ? Operation::kRepeatLazily : Operation::kRepeat);
}

/// A number, at most one more than any program can hold; empty if none follows.
std::optional<std::size_t> PatternCompiler::ReadCount() {
    std::optional<std::size_t> count;
    while (const auto digit = m_cursor.AcceptDigit()) {
        count = std::min(count.value_or(0) * 10 + *digit, PatternLimits::kInstructions + 1);
    }
    return count;
}

/// Writes out a repetition: `least` times the atom, then a loop of it or `most - least` optional ones.
bool PatternCompiler::RepeatAtom(std::size_t least, std::size_t most, Operation operation) {
    auto& instructions = m_program.instructions;
    const std::vector<PatternInstruction> atom(instructions.begin() + static_cast<std::ptrdiff_t>(m_atom),
                                               instructions.end());
    const auto appendAtom = [&] {
        if (!Work(atom.size() + 1) || instructions.size() + atom.size() > PatternLimits::kInstructions) {
            return false;
        }
        instructions.insert(instructions.end(), atom.begin(), atom.end());
        return true;
    };
    instructions.resize(m_atom);
    for (std::size_t i = 0; i < least; ++i) {
        if (!appendAtom()) {
            return false;
        }
    }
    if (most == kUnlimited) {
        const std::size_t begin = instructions.size();
        return Append({operation, 0, static_cast<std::int32_t>(atom.size()) + 2}) && appendAtom() &&
               Append({Operation::kJump, 0, Offset(instructions.size(), begin)});
    }
    const std::size_t size = (most - least) * (atom.size() + 1);
    if (size > PatternLimits::kInstructions) {
        return false;
    }
    const std::size_t end = instructions.size() + size;
    for (std::size_t i = least; i < most; ++i) {
        if (!Append({operation, 0, Offset(instructions.size(), end)}) || !appendAtom()) {
            return false;
        }
    }
    return true;
}

/// Numbers the branches, finds loops over one set, and shortcuts jumps that lead to jumps.
void PatternCompiler::Link() {
    auto& instructions = m_program.instructions;
    for (std::size_t i = instructions.size(); i-- > 0;) {
        PatternInstruction& at = instructions[i];
        const std::size_t target = i + static_cast<std::size_t>(at.offset);
        switch (at.operation) {
            case Operation::kRepeat:
                if (instructions[i + 1].operation == Operation::kSet &&
                    instructions[i + 2].operation == Operation::kJump && instructions[i + 2].offset == -2) {
                    at.operation = Operation::kRepeatSet;
                }
                [[fallthrough]];
            case Operation::kAlternative:
            case Operation::kRepeatLazily:
                at.argument = m_program.branches++;
                break;
            case Operation::kJump:
                if (instructions[target].operation == Operation::kJump) {
                    at.offset += instructions[target].offset;
                }
                break;
            default:
                break;
        }
    }
}

/// Computes the FIRST sets in backward sweeps until nothing changes; each level of nested loops may take one
/// more sweep. Programs that need too many sweeps get no FIRST sets.
void PatternCompiler::PredictNext() {
    m_program.next.resize(m_program.instructions.size());
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
        bool changed = false;
        for (std::size_t i = m_program.instructions.size(); i-- > 0;) {
            const PatternNext next = NextOf(i);
            changed = changed || next != m_program.next[i];
            m_program.next[i] = next;
        }
        if (!changed) {
            return;
        }
    }
    m_program.next.clear();
}

/// The FIRST set of an instruction, from those of its successors so far.
PatternNext PatternCompiler::NextOf(std::size_t instruction) const {
    const PatternInstruction& at = m_program.instructions[instruction];
    const std::size_t target = instruction + static_cast<std::size_t>(at.offset);
    PatternNext next;
    switch (at.operation) {
        case Operation::kCharacter:
            next.bytes.set(at.argument);
            return next;
        case Operation::kSet:
            next.bytes = m_program.sets[at.argument];
            return next;
        case Operation::kAccept:
            next.end = true;
            return next;
        case Operation::kJump:
            return m_program.next[target];
        case Operation::kAlternative:
        case Operation::kRepeat:
        case Operation::kRepeatSet:
        case Operation::kRepeatLazily:
            next = m_program.next[instruction + 1];
            next.bytes |= m_program.next[target].bytes;
            next.end = next.end || m_program.next[target].end;
            return next;
        default:  // groups and assertions consume nothing
            return m_program.next[instruction + 1];
    }
}

bool PatternCompiler::Work(std::size_t amount) {
    m_work += amount;
    return m_work <= PatternLimits::kCompileWork;
}

bool PatternCompiler::Append(PatternInstruction instruction) {
    return Insert(m_program.instructions.size(), instruction);
}

bool PatternCompiler::AppendAtom(PatternInstruction instruction) {
    m_atom = m_program.instructions.size();
    return Append(instruction);
}

bool PatternCompiler::AppendSet(Operation operation, const PatternSet& set) {
    m_program.sets.push_back(set);
    return Append({operation, static_cast<std::uint32_t>(m_program.sets.size() - 1)});
}

bool PatternCompiler::AppendSetAtom(const PatternSet& set) {
    m_atom = m_program.instructions.size();
    return AppendSet(Operation::kSet, set);
}

bool PatternCompiler::Insert(std::size_t at, PatternInstruction instruction) {
    auto& instructions = m_program.instructions;
    if (instructions.size() >= PatternLimits::kInstructions || !Work(instructions.size() - at + 1)) {
        return false;
    }
    instructions.insert(instructions.begin() + static_cast<std::ptrdiff_t>(at), instruction);
    return true;
}

}  // namespace velm
