#pragma once

#include <string>
#include <string_view>

namespace Orvanta {

/// Appends a line that has the driver tell `text` once at the end of the run, with how many different things the cores
/// of all units say it of. `thing` is one of them, in a line; it may be empty: the text is told alone then.
void AppendTally(std::string& lines, std::string_view text, std::string_view thing);

} // namespace Orvanta
