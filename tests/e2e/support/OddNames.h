#pragma once

#include <string>
#include <vector>

namespace Orvanta {

/// Names of a folder and a file in it, "/" between them, that only this system can have.
[[nodiscard]] std::vector<std::string> OddNamesOfThisSystem();

} // namespace Orvanta
