#pragma once

#include "compilers/Compiler.h"

namespace Orvanta {

/// The GNU compiler driver, and the base of every family that speaks its argument language.
class Gcc : public Compiler {
public:
    Gcc();
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    /// Makes the platform word of the size of words that a flag states.
    void FinishParse(ParsedCommand& command) const override;
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
