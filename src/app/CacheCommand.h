#pragma once

namespace args {
class Subparser;
}

namespace Orvanta {

/// The callback of `cache`: declares its options, parses them, and shows, checks, trims or empties a cache of results.
/// \throws ZelmException
void CacheCommand(args::Subparser& parser);

} // namespace Orvanta
