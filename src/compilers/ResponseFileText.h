#pragma once

#include "compilers/CompilerType.h"

#include <optional>
#include <span>
#include <string>

namespace Orvanta {

/// The text of a response file from which a compiler of this family reads `words` ("@FILE" on its command line); absent
/// for a family that reads none that way.
[[nodiscard]] std::optional<std::string> ResponseFileText(CompilerType type, std::span<const std::string> words);

} // namespace Orvanta
