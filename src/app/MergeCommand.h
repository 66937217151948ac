#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callback of `merge`: declares its options, parses them, and makes one report of the parts that shards have
/// written.
/// \throws ZelmException, and ZelmRcException when the code isn't 0
void MergeCommand(args::Subparser& parser);

} // namespace Orvanta
