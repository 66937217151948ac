#pragma once

#include "compilers/Gcc.h"

namespace Orvanta {

/// The compiler driver of QNX, in front of GCC.
class Qcc : public Gcc {
public:
    /// Has GCC's flags and, before them, its own: "-P" means another thing here.
    Qcc();

protected:
    /// qcc stops behind the preprocessor with a flag of its own, by which GCC leaves out line markers.
    [[nodiscard]] const char* StageFlag() const noexcept override { return "-P"; }
};

} // namespace Orvanta
