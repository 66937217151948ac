#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// The compiler driver of QNX, in front of GCC.
class Qcc : public Gcc {
public:
    Qcc();

protected:
    [[nodiscard]] const char* StageFlag() const noexcept override { return "-P"; }
};

} // namespace Orvanta
