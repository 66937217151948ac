#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// LLVM's compiler driver with GCC's argument language.
class Clang : public Gcc {
public:
    Clang();

    void FinishParse(ParsedCommand& command) const override;

    [[nodiscard]] const FlagTable* FrontEndFlags() const override { return &frontEnd_; }

protected:
    /// A compiler with clang's flags.
    Clang(CompilerType type, CharSign charSign);

private:
    FlagTable frontEnd_;
};

} // namespace Orvanta
