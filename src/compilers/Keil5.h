#pragma once

#include "compilers/Compiler.h"

namespace Orvanta {

/// The compiler of Keil MDK 5, armcc, with an argument language of its own.
class Keil5 : public Compiler {
public:
    Keil5();
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    /// Sets the platform word; "--gnu" makes the unit one of Keil5Gnu.
    void FinishParse(ParsedCommand& command) const override;
    [[nodiscard]] OptionFileSyntax OptionFiles() const noexcept override;

    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }

protected:
    /// A mode of the compiler with a name of its own.
    Keil5(CompilerType type, std::string_view name);
};

} // namespace Orvanta
