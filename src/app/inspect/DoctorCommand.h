#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callback of `doctor`: tells all that can be known to go wrong before a run.
/// \throws ZelmRcException with 1 when there is an error, with 2 when there are warnings
void DoctorCommand(args::Subparser& parser);

} // namespace Orvanta
