#pragma once

#include "compilers/Clang.h"

namespace Orvanta {

/// The compiler of Keil MDK 6, armclang, which speaks clang's argument language.
class Keil6 : public Clang {
public:
    Keil6();
    void FinishParse(ParsedCommand& command) const override;

    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
