#pragma once

#include "platform/Environment.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

// Microsoft's compilers take arguments from variables, too. A unit must have them among its words: the core has to know
// of them, and the preprocessing command must not get them a second time.

namespace Orvanta {

/// The variables in which cl and clang-cl look for further arguments: in front of the command's, and behind them.
inline constexpr std::string_view FrontArgumentsVariable = "CL";
inline constexpr std::string_view BackArgumentsVariable = "_CL_";

/// Puts the words that both variables hold where the compiler takes them from. `arguments` has the compiler first.
/// `layers` are the environments in which a variable may stand, the one that counts most first.
void AddArgumentsOfVariables(std::vector<std::string>& arguments, std::span<const Environment* const> layers);

/// Takes out what would make a compiler write files while it preprocesses, whoever has set it.
void RemoveWritingVariables(Environment& variables);

} // namespace Orvanta
