#pragma once

#include <cstddef>
#include <memory>
#include <vector>

// A unit refers to its source by the place of the argument, and not by the name: one name may stand twice in a command,
// as a file and as the value of a flag, and only one of them is compiled.

namespace Orvanta {

/// One source file that an invocation compiles.
struct SourceArgument {
    std::size_t index = 0;  ///< of the argument that names it
    std::size_t offset = 0; ///< where the file's name begins in that argument
    /// The arguments of the command that are values of unknown flags before them; null when there are none.
    std::shared_ptr<const std::vector<std::size_t>> openValues = {};
};

} // namespace Orvanta
