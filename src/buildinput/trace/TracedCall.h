#pragma once

#include "buildinput/trace/TraceLine.h"
#include "buildinput/trace/TraceText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Calls are taken apart without asking whose they are, so that all forms that the tracer has for one call meet in one
// record. What follows from it for a process is the reader's business.

namespace Orvanta {

/// One whole call of a trace, taken apart by its text alone: what it means for a process is not known here. Views stay
/// valid as long as the text.
struct TracedCall {
    TraceCall call = TraceCall::Other;
    std::optional<std::int64_t> file;    ///< from which a relative path counts; absent: the working directory
    std::optional<std::string> filePath; ///< of that folder, where the trace shows it
    TraceLiteral path;
    std::string_view rest;             ///< behind the path: the arrays of an execution, the flags of an opening
    std::optional<TraceResult> result; ///< absent when the call never returned
    bool isReadable = true;            ///< false: the text is not as it should be, or cut short

    /// Whether it did what it is for.
    [[nodiscard]] bool HasSucceeded() const noexcept;
};

/// Takes a call that did not fail apart. An execution is read up to its path: most programs are of no interest.
[[nodiscard]] TracedCall ParseTracedCall(TraceCall call, std::string_view text);

} // namespace Orvanta
