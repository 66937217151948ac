#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// GCC for ARM as the processor's maker delivers it.
class GccARM : public Gcc {
public:
    /// Has GCC's flags only; of those for plain char the last decides.
    GccARM();
    /// The platform is "arm" whatever the command says: the compiler makes nothing else.
    void FinishParse(ParsedCommand& command) const override;

    /// As the ABI of ARM has it.
    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
