#pragma once

#include "compilers/Compiler.h"

namespace Orvanta {

/// The compiler of TI's ARM code generation tools, armcl, with an argument language of its own.
class TiArmCGT : public Compiler {
public:
    TiArmCGT();
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    void FinishParse(ParsedCommand& command) const override;
    void StateKindOfSource(InputKind kind, ParsedCommand& command) const override;
    [[nodiscard]] OptionFileSyntax OptionFiles() const noexcept override;

    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
