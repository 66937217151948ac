#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace Orvanta {

/// What cores say of a run as a whole: by each text, the distinct things that it is said of. A text that is said of
/// nothing has none.
using CoreTallies = std::map<std::string, std::set<std::string>>;

/// Takes the lines with tallies out of what a core has printed, and returns the rest of it.
[[nodiscard]] std::string TakeTallies(std::string_view output, CoreTallies& tallies);

/// Adds what another unit's core said.
void AddTallies(CoreTallies& tallies, CoreTallies&& others);

/// A line for each text, with how many things it is said of, and one of them; always the same, whatever the order of
/// units was.
[[nodiscard]] std::string TalliesText(const CoreTallies& tallies);

} // namespace Orvanta
