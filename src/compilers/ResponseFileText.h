#pragma once

#include "compilers/CompilerType.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Orvanta {

/// The text of a file from which a compiler of this family reads `words`; absent for a type that is no family.
[[nodiscard]] std::optional<std::string> ResponseFileText(CompilerType type, std::span<const std::string> words);

/// The arguments that make a compiler of this family read the file at `path`: "@FILE", "--via=FILE", ...
[[nodiscard]] std::vector<std::string> ResponseFileArguments(CompilerType type, const std::string& path);

} // namespace Orvanta
