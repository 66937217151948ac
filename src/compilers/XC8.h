#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// Microchip's compiler driver for 8-bit controllers, xc8-cc, which speaks GCC's argument language.
class XC8 : public Gcc {
public:
    /// Has GCC's flags and those of its own types; of the flags for plain char the last decides.
    XC8();
    /// The platform is "pic8" whatever the command says of the size of words.
    void FinishParse(ParsedCommand& command) const override;

    /// The compiler's own choice, which no ABI asks for.
    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
