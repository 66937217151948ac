#pragma once

#include "analysis/RunOutcome.h"
#include "analysis/ToldInput.h"
#include "history/UnitCost.h"

#include <span>
#include <string>

namespace Orvanta {

/// The file of `--stats`: what became of each unit and of each invocation that gave none, and what it took, one JSON
/// object a line, in the order of the input.
class RunStatistics {
public:
    /// A file that can't be written is told before any work. \throws FileException
    explicit RunStatistics(std::string path);

    /// Writes all of it, once; the file is there afterwards. `costs` are those of the units, or none.
    /// \throws FileException
    void Write(const ToldInput& input, const RunOutcome& outcome, std::span<const UnitCost> costs) const;

private:
    std::string path_;
};

} // namespace Orvanta
