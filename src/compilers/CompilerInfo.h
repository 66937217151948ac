#pragma once

#include "compilers/CompilerType.h"

#include <string>

namespace Orvanta {

/// A compiler found on this machine. One record per path, shared by all commands that use it.
struct CompilerInfo {
    CompilerType type = CompilerType::Unknown;
    std::string path;    ///< absolute
    std::string version; ///< the text that "--version" printed; empty when the name alone decided
    std::string fault;   ///< why it can't be started; empty when it can, as far as is known
    std::string rule;    ///< which rule has told the family, for whoever asks why; empty for an unknown one
};

} // namespace Orvanta
