#pragma once

#include "compilers/Compiler.h"
#include "compilers/CompilerTarget.h"

// cl reads a command in another way than drivers of GCC's kind. A flag for the language holds for every source, before
// and behind it, and not only for those that follow; most values are glued to their flags; and one set of flags comes
// from variables, which the build input puts into the command before it is read.

namespace Orvanta {

/// Microsoft's compiler driver, and the base of those that speak its argument language. Its flags begin with "/" or
/// "-". Safe to share: what it learns about the compilers themselves has a lock of its own.
class Cl : public Compiler {
public:
    /// cl itself, which has no flags beyond the table that the others build on.
    /// `launcher` starts the compilers that are asked for their target.
    explicit Cl(LauncherWords launcher = {});
    /// Preprocesses into a file ("/P" with "/Fi"): "/E" would write the text to the standard output.
    [[nodiscard]] std::vector<std::string> BuildPreprocessCommand(const ParsedCommand& command,
                                                                  const std::string& outputPath) const override;
    /// Sets the platform word, by the compiler's path, which should be absolute.
    void FinishParse(ParsedCommand& command) const override;
    /// A flag for all sources makes one of every file but those for the linker, whatever their extension. Else the
    /// extension decides, in upper or lower case.
    [[nodiscard]] InputKind KindOfInput(std::string_view path, std::optional<InputKind> ofAll) const override;
    /// Says "/TC" or "/TP" again where a flag has named the language: the flags that did are dropped.
    void StateKindOfSource(InputKind kind, ParsedCommand& command) const override;

protected:
    /// A compiler with more flags than cl's.
    Cl(CompilerType type, std::span<const FlagRow> extension, LauncherWords launcher);

    /// Whether the unit is compiled for 64 bits.
    [[nodiscard]] virtual TargetBits TargetOf(const ParsedCommand& command) const;

    /// Adds the source, which stands last, in a form that the compiler takes for no flag.
    virtual void AddSource(const std::string& source, std::vector<std::string>& words) const;

    /// What is learnt about compilers, for families that ask by other rules. Any thread may use it.
    [[nodiscard]] CompilerTargets& Targets() const noexcept { return targets_; }

private:
    mutable CompilerTargets targets_;
};

} // namespace Orvanta
