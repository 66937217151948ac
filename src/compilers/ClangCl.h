#pragma once

#include "compilers/Cl.h"
#include "compilers/Clang.h"

namespace Orvanta {

/// LLVM's compiler driver with cl's argument language.
class ClangCl : public Cl {
public:
    ClangCl();
    void FinishParse(ParsedCommand& command) const override;

    /// Behind "/clang:" and "-Xclang" stand the arguments of plain clang.
    [[nodiscard]] const Compiler& ModelOfHandedOn() const override { return clang_; }

protected:
    [[nodiscard]] TargetBits TargetOf(const ParsedCommand& command) const override;
    void AddSource(const std::string& source, std::vector<std::string>& words) const override;

private:
    Clang clang_;
};

} // namespace Orvanta
