#pragma once

#include "compilers/Compiler.h"
#include "platform/Process.h"

#include <memory>
#include <vector>

// Models have no state that depends on a unit, so that one of each serves all units and threads. They are made together
// at the start of a run: whoever asks for one later needs no lock.

namespace Orvanta {

/// One shared model per compiler family. Immutable after construction.
class CompilerRegistry {
public:
    /// Makes all models at once: their tables are sorted here and nowhere later. `launcher` starts the compilers that
    /// they ask.
    explicit CompilerRegistry(LauncherWords launcher = {});

    /// \throws ZelmException "Unknown preprocessor type: " and the number, for a type without a model
    [[nodiscard]] std::shared_ptr<const Compiler> Get(CompilerType type) const;

private:
    std::vector<std::shared_ptr<const Compiler>> models_;
};

} // namespace Orvanta
