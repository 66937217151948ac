#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callback of `explain`: shows how each invocation that holds a file was read, and what a run would do with it.
/// \throws ZelmException when nothing of the input holds the file
void ExplainCommand(args::Subparser& parser);

} // namespace Orvanta
