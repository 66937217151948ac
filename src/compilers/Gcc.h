#pragma once

#include "compilers/Compiler.h"

// Many vendors put their own driver in front of GCC or clang and keep its argument language. Such a family has this
// class's table with a few rows in front of it; what the driver does beside that are the virtual functions.

namespace Orvanta {

/// The GNU compiler driver, and the base of every family that speaks its argument language.
class Gcc : public Compiler {
public:
    /// GCC with no flags beyond the table that the others build on.
    Gcc();
    /// Adds "-w": the build has told the warnings already. The source stands last, so that every language flag before
    /// it holds for it.
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    /// Makes the platform word of the size of words that a flag states.
    void FinishParse(ParsedCommand& command) const override;
    /// Names the language of a source that is preprocessed already, as that of a plain one.
    void StateKindOfSource(InputKind kind, ParsedCommand& command) const override;

protected:
    /// How the flags for plain char decide.
    enum class CharSign {
        UnsignedByFlag, ///< it is unsigned as soon as -funsigned-char stands anywhere
        ByLastFlag,     ///< by the last of the four
    };

    /// A family with more flags than GCC's.
    Gcc(CompilerType type, std::string_view name, std::span<const FlagRow> extension, CharSign charSign);

    /// The flag that has a source preprocessed only.
    [[nodiscard]] virtual const char* StageFlag() const noexcept { return "-E"; }
};

} // namespace Orvanta
