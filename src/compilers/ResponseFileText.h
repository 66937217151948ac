#pragma once

#include "compilers/CompilerType.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

// A command can be longer than the system starts: its words may have come from response files of the build. Then they
// go into a file again, by the quoting of the family that is to read it. That every word comes out of it as it went in
// matters more than how the file looks, so that words are rather quoted too often.

namespace Orvanta {

/// The text of a file from which a compiler of this family reads `words`; absent for a type that is no family.
[[nodiscard]] std::optional<std::string> ResponseFileText(CompilerType type, std::span<const std::string> words);

/// The arguments that make a compiler of this family read the file at `path`: "@FILE", "--via=FILE", ...
[[nodiscard]] std::vector<std::string> ResponseFileArguments(CompilerType type, const std::string& path);

} // namespace Orvanta
