#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// LLVM's compiler driver with GCC's argument language.
class Clang : public Gcc {
public:
    /// clang as it is found under its own name.
    Clang();

    /// Beside what GCC's model does, switches modules off where the command has them on.
    void FinishParse(ParsedCommand& command) const override;

    /// What "clang -cc1" reads, as far as a command may hand it on with "-Xclang".
    [[nodiscard]] const FlagTable* FrontEndFlags() const override { return &frontEnd_; }

protected:
    /// A compiler with clang's flags.
    Clang(CompilerType type, CharSign charSign);

private:
    FlagTable frontEnd_;
};

} // namespace Orvanta
