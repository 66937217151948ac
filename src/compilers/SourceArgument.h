#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace Orvanta {

/// One source file that an invocation compiles.
struct SourceArgument {
    std::size_t index = 0;  ///< of the argument that names it
    std::size_t offset = 0; ///< where the file's name begins in that argument
    /// The arguments of the command that are values of unknown flags before them; null when there are none.
    std::shared_ptr<const std::vector<std::size_t>> openValues = {};
};

} // namespace Orvanta
