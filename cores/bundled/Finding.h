#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Orvanta {

/// A place that an engine names.
struct FindingPlace {
    std::string file; ///< its alias
    std::uint32_t line = 0;

    bool operator==(const FindingPlace&) const = default;
};

/// One finding as an engine tells it.
struct Finding {
    FindingPlace location;
    std::uint32_t column = 0; ///< of the location, counted in bytes from 1; 0 for the line as a whole
    std::string severity;     ///< such as "error"; empty where the engine tells none
    std::string id;           ///< such as "nullPointer"
    std::uint32_t cwe = 0;
    std::string message;
    std::vector<FindingPlace> path;         ///< the steps that lead to the fault, the finding's own location among them
    std::vector<std::string> otherIds = {}; ///< of further checks that say the same

    bool operator==(const Finding&) const = default;
};

} // namespace Orvanta
