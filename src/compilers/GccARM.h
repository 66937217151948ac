#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// GCC for ARM as the processor's maker delivers it.
class GccARM : public Gcc {
public:
    GccARM();
    void FinishParse(ParsedCommand& command) const override;

    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
