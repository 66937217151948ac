#pragma once

#include "compilers/Compiler.h"

namespace Orvanta {

/// The GNU compiler driver, and the base of every family that speaks its argument language.
class Gcc : public Compiler {
public:
    Gcc();
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    void FinishParse(std::span<const std::string> arguments, ParsedCommand& command) const override;
    void StateKindOfSource(InputKind kind, ParsedCommand& command) const override;

protected:
    /// A family with more flags than GCC's.
    Gcc(CompilerType type, std::string_view name, std::span<const FlagRow> extension);

    /// Plain char is as the last of -fsigned-char and -funsigned-char says; without them it stays what it is.
    static void TakeCharSign(std::span<const std::string> arguments, ParsedCommand& command);
};

} // namespace Orvanta
