#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callbacks of the commands that work on finished reports. Neither does its work in this version.
/// \throws ZelmException that says so
void SuppressCommand(args::Subparser& parser);
void FilterSuppressedCommand(args::Subparser& parser);

} // namespace Orvanta
