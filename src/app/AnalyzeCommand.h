#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callback of `analyze`: declares its options, parses them and runs the analysis.
/// \throws ZelmRcException with the run's code when it isn't 0, and what goes wrong before the run
void AnalyzeCommand(args::Subparser& parser);

} // namespace Orvanta
