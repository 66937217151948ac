#pragma once

#include <cstddef>

namespace Orvanta {

/// One source file that an invocation compiles.
struct SourceArgument {
    std::size_t index = 0;  ///< of the argument that names it
    std::size_t offset = 0; ///< where the file's name begins in that argument
};

} // namespace Orvanta
