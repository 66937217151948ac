#pragma once

#include "compilers/Clang.h"

namespace Orvanta {

/// The compiler of Keil MDK 6, armclang, which speaks clang's argument language.
class Keil6 : public Clang {
public:
    /// Has clang's flags; of those for plain char the last decides.
    Keil6();
    /// Beside what clang's model does, sets the platform "arm", also over one for a size of words.
    void FinishParse(ParsedCommand& command) const override;

    /// As the ABI of ARM has it.
    [[nodiscard]] bool IsPlainCharUnsigned() const noexcept override { return true; }
};

} // namespace Orvanta
