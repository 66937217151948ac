#pragma once

#include "compilers/Compiler.h"
#include "compilers/ParsedCommand.h"
#include "compilers/SourceArgument.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What an invocation is, before it is read in full.
struct InvocationOutline {
    std::vector<SourceArgument> sources; ///< C and C++ sources, in the order of the command
    std::string_view reason;             ///< why there are none ("link only", ...); empty when there are some
    std::optional<std::size_t> missingResponseFile; ///< the first argument that names one, whatever else there is
};

/// Finds the sources of an invocation, or why it compiles none. `arguments` has the compiler first and no response
/// files left in it. Allocates nothing but the result.
[[nodiscard]] InvocationOutline OutlineInvocation(const Compiler& model, std::span<const std::string> arguments);

/// Reads the invocation in full, for the source that argument `source` names.
[[nodiscard]] ParsedCommand ReadCommandLine(const Compiler& model, std::span<const std::string> arguments,
                                            SourceArgument source);

} // namespace Orvanta
