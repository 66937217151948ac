#pragma once

#include "compilers/Compiler.h"
#include "compilers/ParsedCommand.h"
#include "compilers/SourceArgument.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// A command is read in two steps. The outline says for every command of a build whether it compiles anything, and what;
// a unit keeps only the words and the place of its source. All else is read when the unit's turn has come, and is
// thrown away with it: of a large build, commands read in full would take far more memory than their words do.

namespace Orvanta {

/// What an invocation is, before it is read in full.
struct InvocationOutline {
    std::vector<SourceArgument> sources; ///< C and C++ sources, in the order of the command
    std::string_view reason;             ///< why there are none ("link only", ...); empty when there are some
    std::optional<std::size_t> missingResponseFile; ///< the first argument that names one, whatever else there is
    std::string_view directory;         ///< from which a flag has relative paths count; empty: the invocation's own
    bool makesObjects = false;          ///< it stops before linking
    std::vector<std::size_t> openWords; ///< inputs that follow unknown flags: files, or the values of these
};

/// Finds the sources of an invocation, or why it compiles none. `arguments` has the compiler first and no response
/// files left in it. `openValues` are those of its words that are known to be values of the unknown flags before them.
/// Allocates nothing but the result.
[[nodiscard]] InvocationOutline OutlineInvocation(const Compiler& model, std::span<const std::string> arguments,
                                                  std::span<const std::size_t> openValues = {});

/// Reads the invocation in full, for the source that argument `source` names.
[[nodiscard]] ParsedCommand ReadCommandLine(const Compiler& model, std::span<const std::string> arguments,
                                            const SourceArgument& source);

} // namespace Orvanta
