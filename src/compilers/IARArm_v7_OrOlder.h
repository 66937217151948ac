#pragma once

#include "compilers/Compiler.h"

namespace Orvanta {

/// The compiler of IAR for ARM before release 8, iccarm, with an argument language of its own.
class IARArm_v7_OrOlder : public Compiler {
public:
    IARArm_v7_OrOlder();
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    void FinishParse(ParsedCommand& command) const override;
    [[nodiscard]] OptionFileSyntax OptionFiles() const noexcept override;

    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }

protected:
    /// Another release.
    explicit IARArm_v7_OrOlder(CompilerType type);
};

} // namespace Orvanta
