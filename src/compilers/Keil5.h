#pragma once

#include "compilers/Compiler.h"

// armcc tells its mode by a flag, and the core knows each mode by a name of its own: the family of a unit is certain
// only when its command has been read.

namespace Orvanta {

/// The compiler of Keil MDK 5, armcc, with an argument language of its own.
class Keil5 : public Compiler {
public:
    /// armcc in its own mode. The other mode is found by its flag, when a command has been read.
    Keil5();
    /// Adds "-W": the build has told the warnings already. "-E" would write to the standard output but for the "-o"
    /// behind it.
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    /// Sets the platform word; "--gnu" makes the unit one of Keil5Gnu.
    void FinishParse(ParsedCommand& command) const override;
    /// Via files: "--via=FILE" or "--via FILE", with comments of whole lines and apostrophes as quotes.
    [[nodiscard]] OptionFileSyntax OptionFiles() const noexcept override;

    /// As the ABI of ARM has it.
    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }

protected:
    /// A mode of the compiler with a name of its own.
    Keil5(CompilerType type, std::string_view name);
};

} // namespace Orvanta
