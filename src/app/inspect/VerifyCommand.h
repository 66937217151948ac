#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callback of `verify`: compares what the driver preprocesses with what the build's own commands give.
/// \throws ZelmRcException with 1 when some texts differ or can't be compared
void VerifyCommand(args::Subparser& parser);

} // namespace Orvanta
