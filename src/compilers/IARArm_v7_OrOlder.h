#pragma once

#include "compilers/Compiler.h"

// The command of this compiler preprocesses as a side effect: "--preprocess" names the file for the text and says
// whether anything is compiled besides. So the flags that build tools write for that purpose are read with all their
// letters.

namespace Orvanta {

/// The compiler of IAR for ARM before release 8, iccarm, with an argument language of its own.
class IARArm_v7_OrOlder : public Compiler {
public:
    /// iccarm before release 8, as its version text tells it.
    IARArm_v7_OrOlder();
    /// Keeps the compiler quiet, and adds "--enable_multibytes", in whose place newer releases have others.
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    /// Sets the platform word, which is always "arm".
    void FinishParse(ParsedCommand& command) const override;
    /// Extended command lines: "-f FILE", "-fFILE" and "--f FILE", with the comments of C.
    [[nodiscard]] OptionFileSyntax OptionFiles() const noexcept override;

    /// As the ABI of ARM has it.
    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }

protected:
    /// Another release.
    explicit IARArm_v7_OrOlder(CompilerType type);
};

} // namespace Orvanta
