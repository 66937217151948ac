#include "buildinput/trace/TracedCall.h"

namespace Orvanta {

namespace {

/// Whether the first argument is an open file: a folder from which the path counts, or what is changed into.
bool HasFileFirst(TraceCall call) {
    return call == TraceCall::ExecuteAt || call == TraceCall::OpenAt || call == TraceCall::ChangeDirectoryFile;
}

/// Whether a path stands among the arguments, behind the file if there is one.
bool HasPath(TraceCall call) {
    return call != TraceCall::Fork && call != TraceCall::ChangeDirectoryFile;
}

} // namespace

bool TracedCall::HasSucceeded() const noexcept {
    if (!isReadable || !result) {
        return false;
    }
    switch (call) {
    case TraceCall::Other:
        return false;
    case TraceCall::Execute:
    case TraceCall::ExecuteAt:
    case TraceCall::ChangeDirectory:
    case TraceCall::ChangeDirectoryFile:
        return result->value == 0;
    case TraceCall::Fork:
    case TraceCall::GetDirectory:
        // Zero is what the child sees of its own start.
        return result->value > 0;
    case TraceCall::Open:
    case TraceCall::OpenAt:
        return result->value >= 0;
    }
    return false;
}

TracedCall ParseTracedCall(TraceCall call, std::string_view text) {
    TracedCall parsed;
    parsed.call = call;
    // What could be read stays in place where the rest can't: the path of an execution names it in a message.
    TraceTextReader reader(text);
    if (HasFileFirst(call) && !reader.TakeFile(parsed.file, parsed.filePath)) {
        parsed.isReadable = false;
    } else if (HasFileFirst(call) && HasPath(call) && !reader.Take(", ")) {
        parsed.isReadable = false;
    } else if (HasPath(call) && !reader.TakeLiteral(parsed.path)) {
        // Where its buffer was too small, a question shows an address.
        parsed.isReadable = call == TraceCall::GetDirectory && HasResult(text);
        return parsed;
    }
    parsed.rest = reader.Rest();
    // The arrays of an execution are long, and may hold what looks like a result.
    const bool isExecution = call == TraceCall::Execute || call == TraceCall::ExecuteAt;
    parsed.result = isExecution ? TraceTextReader(TailOf(text)).TakeResult() : reader.TakeResult();
    // One that was killed never returned: "= ?".
    parsed.isReadable = parsed.isReadable && (parsed.result || HasResult(text));
    return parsed;
}

} // namespace Orvanta
