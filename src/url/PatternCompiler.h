#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "url/PatternCharacters.h"
#include "url/PatternProgram.h"

namespace velm {

/// Compiles one expression, in one pass and without recursion. A part of the program refers to its own
/// instructions by relative offsets only, so the compiler can move and copy parts that are complete.
class PatternCompiler {
public:
    /// @return empty when the expression is not valid or exceeds a limit
    /// Throws std::bad_alloc when memory runs out.
    static std::optional<PatternProgram> Compile(std::string_view expression);

private:
    using Operation = PatternInstruction::Operation;

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    /// The whole expression, or a "(" whose ")" is still to come.
    struct Group {
        Operation begin = Operation::kJump;  // kGroupBegin, kLookAhead, kNoLookAhead; kJump for none of them
        std::uint32_t number = 0;
        std::size_t first = 0;         // instruction
        std::size_t alternative = 0;   // where the current alternative begins
        std::size_t lastJump = kNone;  // at the end of an alternative; its offset leads to the one before
    };

    explicit PatternCompiler(std::string_view expression);

    bool CompileAll();
    bool CompileNext();
    bool BeginGroup();
    bool EndGroup();
    bool EndAlternative();
    bool CompileBracket();
    bool CompileEscape();
    bool CompileBackReference(char firstDigit);
    bool CompileQuantifier(char c);
    bool CompileInterval();
    bool ReadCount(std::size_t& count);
    bool RepeatAtom(std::size_t least, std::size_t most, Operation operation);

    bool AtEnd() const { return m_rest.empty(); }
    bool Accept(char c);
    char Take();
    bool Work(std::size_t amount);
    bool Append(PatternInstruction instruction);
    bool AppendAtom(PatternInstruction instruction);
    bool AppendSet(Operation operation, const PatternCharacters::Set& set);
    bool AppendSetAtom(const PatternCharacters::Set& set);
    bool Insert(std::size_t at, PatternInstruction instruction);
    void Link();
    void PredictNext();
    PatternNext NextOf(std::size_t instruction) const;

    std::string_view m_rest;
    PatternCharacters m_characters;
    PatternProgram m_program;
    std::vector<Group> m_open;
    std::size_t m_atom = kNone;  // the first instruction of what a quantifier would apply to
    std::size_t m_work = 0;
    unsigned int m_lookAheadDepth = 0;
};

}  // namespace velm
