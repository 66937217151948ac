#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// Microchip's compiler driver for 8-bit controllers, xc8-cc, which speaks GCC's argument language.
class XC8 : public Gcc {
public:
    XC8();
    void FinishParse(ParsedCommand& command) const override;

    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
