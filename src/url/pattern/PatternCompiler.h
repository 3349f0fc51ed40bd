#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "url/pattern/PatternCharacters.h"
#include "url/pattern/PatternCursor.h"
#include "url/pattern/PatternProgram.h"

namespace velm {

/// Compiles an expression in one pass, without recursion.
class PatternCompiler {
public:
    /// @return the program; empty if the expression is invalid or exceeds a limit
    /// Throws std::bad_alloc when memory runs out.
    static std::optional<PatternProgram> Compile(std::string_view expression);

private:
    using Operation = PatternInstruction::Operation;

    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    enum class GroupKind { kNonCapturing, kCapturing, kLookAhead, kNegativeLookAhead };

    /// A group that is still open, or the whole expression.
    struct Group {
        GroupKind kind = GroupKind::kNonCapturing;
        std::uint32_t number = 0;      // if capturing
        std::size_t first = 0;         // instruction
        std::size_t alternative = 0;   // first instruction of the current alternative
        std::size_t lastJump = kNone;  // of the previous alternative; its offset links to the one before

        bool IsLookAhead() const {
            return kind == GroupKind::kLookAhead || kind == GroupKind::kNegativeLookAhead;
        }
    };

    explicit PatternCompiler(std::string_view expression);

    bool CompileAll();
    bool CompileNext();
    bool BeginGroup();
    bool EndGroup();
    bool EndAlternative();
    bool CompileBracket();
    bool CompileEscape();
    bool CompileBackReference(std::uint32_t number);
    bool CompileQuantifier(char c);
    bool CompileInterval();
    std::optional<std::size_t> ReadCount();
    bool RepeatAtom(std::size_t least, std::size_t most, Operation operation);

    bool Work(std::size_t amount);
    bool Append(PatternInstruction instruction);
    bool AppendAtom(PatternInstruction instruction);
    bool AppendSet(Operation operation, const PatternSet& set);
    bool AppendSetAtom(const PatternSet& set);
    bool Insert(std::size_t at, PatternInstruction instruction);
    void Link();
    void PredictNext();
    PatternNext NextOf(std::size_t instruction) const;

    PatternCursor m_cursor;
    PatternCharacters m_characters;
    PatternProgram m_program;
    std::vector<Group> m_open;
    std::size_t m_atom = kNone;  // first instruction of what a quantifier would repeat
    std::size_t m_work = 0;
    unsigned int m_lookAheadDepth = 0;
};

}  // namespace velm
