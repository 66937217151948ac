#pragma once

#include "compilers/Cl.h"
#include "compilers/Clang.h"

namespace Orvanta {

/// LLVM's compiler driver with cl's argument language.
class ClangCl : public Cl {
public:
    /// Has cl's flags and, before them, its own: of two rows with one name its own counts.
    /// As Cl.
    explicit ClangCl(LauncherWords launcher = {});
    /// Beside what cl's model does, switches modules off where the command has them on.
    void FinishParse(ParsedCommand& command) const override;

    /// Behind "/clang:" and "-Xclang" stand the arguments of plain clang.
    [[nodiscard]] const Compiler& ModelOfHandedOn() const override { return clang_; }

protected:
    /// By a flag for the size of words, else by the triple of the command, else by what the compiler says of itself.
    [[nodiscard]] TargetBits TargetOf(const ParsedCommand& command) const override;
    /// Puts "--" before a name that begins like a flag, absolute paths of POSIX among them.
    void AddSource(const std::string& source, std::vector<std::string>& words) const override;

private:
    Clang clang_;
};

} // namespace Orvanta
