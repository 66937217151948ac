#pragma once

#include <string_view>
#include <vector>

namespace Orvanta {

/// The engines of the bundled core that can look at a unit.
enum class EngineKind { Cppcheck, Clang };

/// Reads a list of engines ("cppcheck", "cppcheck,clang"); an empty one names none.
/// \throws ZelmException with the word that is not known, as `"gcc", expected ...`
[[nodiscard]] std::vector<EngineKind> ParseEngineList(std::string_view text);

} // namespace Orvanta
