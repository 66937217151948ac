#pragma once

#include "compilers/Compiler.h"

namespace Orvanta {

/// The compiler of TI's ARM code generation tools, armcl, with an argument language of its own.
class TiArmCGT : public Compiler {
public:
    /// armcl has a table of its own: most flags stand in it by a long and a short name.
    TiArmCGT();
    /// Beside the stage, "--preproc_with_line" asks for line markers.
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    /// Sets the platform word, which is always "arm".
    void FinishParse(ParsedCommand& command) const override;
    /// Has the compiler take the extension of the source for the language that a flag gave to the file. A source
    /// without an extension is left as it is.
    void StateKindOfSource(InputKind kind, ParsedCommand& command) const override;
    /// Command files: "--cmd_file=FILE", "-@FILE" and their forms, with comments of both kinds.
    [[nodiscard]] OptionFileSyntax OptionFiles() const noexcept override;

    /// As the ABI of ARM has it.
    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
