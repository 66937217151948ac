#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callback of `filter-suppressed`: declares its options, parses them and removes from a report what a base holds.
/// \throws ZelmException, OrvlogConverter::ReportException
void FilterSuppressedCommand(args::Subparser& parser);

} // namespace Orvanta
