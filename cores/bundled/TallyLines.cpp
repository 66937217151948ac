#include "bundled/TallyLines.h"

namespace Orvanta {

void AppendTally(std::string& lines, std::string_view text, std::string_view thing) {
    // The form in which the driver looks for these lines among others.
    lines.append("<}tally{>").append(text);
    if (!thing.empty()) {
        lines.append("\t").append(thing);
    }
    lines += '\n';
}

} // namespace Orvanta
