#pragma once

#include "platform/Environment.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

// Builds put programs in front of their compilers: caches, distributors of work, timers, setters of variables. Each has
// options of its own, so that each has a row. A program without one is not guessed at: the first word behind it that
// looks like a compiler may as well be the value of an option. The user can name further ones, and is told where it
// would help.

namespace Orvanta {

/// What the launchers in front of a compiler's command do to it.
struct LauncherEffects {
    bool any = false;
    std::string directory;         ///< into which they change, as written; empty: none
    Environment variables;         ///< that they set
    std::string_view otherPurpose; ///< not empty when they start no compilation, and says what else
};

/// Removes the programs in front of a command that only start it ("nice", "env A=1", "distcc", "libtool
/// --mode=compile", ...) with their options, so that the compiler comes first. `further` are the names of more of them.
/// The word "ccache" stays in front: whether its commands count is for the user to say. Its options go.
[[nodiscard]] LauncherEffects RemoveLaunchers(std::vector<std::string>& arguments,
                                              std::span<const std::string> further);

/// Whether a program of this name takes a whole compiler command and may run it elsewhere, out of a trace's sight, or
/// not at all: ccache, distcc and their like, and the names in `further`.
[[nodiscard]] bool MayHideCompilation(std::string_view program, std::span<const std::string> further);

/// Whether a word is "NAME=VALUE".
[[nodiscard]] bool IsAssignment(std::string_view word) noexcept;

} // namespace Orvanta
