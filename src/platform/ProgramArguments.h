#pragma once

#include <string>
#include <vector>

namespace Orvanta {

/// The words that this program was started with, the program's own name first, in UTF-8. Takes what `main` was given:
/// a system whose `main` gets less than the user has typed has a better source.
[[nodiscard]] std::vector<std::string> ProgramArguments(int count, const char* const* arguments);

} // namespace Orvanta
