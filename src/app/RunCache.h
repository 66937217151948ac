#pragma once

#include "analysis/RunPlaces.h"
#include "cache/ResultCache.h"
#include "settings/RunSettings.h"

#include <memory>
#include <string>

namespace Orvanta {

/// The cache of results that the settings name; null when they name none. `places` has the core and its version.
///
/// The tree whose place is no part of a result is that of `--sourcetree-root`, else the checkout that the current
/// folder belongs to; outside of one, results hold for sources of these very paths.
/// \throws ZelmException when the core can't be read, or the library of hashes can't be used
[[nodiscard]] std::unique_ptr<ResultCache> MakeResultCache(const RunSettings& settings, const RunPlaces& places);

/// The line that says how much of the run was known; empty without a cache, and when it was not asked.
[[nodiscard]] std::string HitsText(const ResultCache* cache);

} // namespace Orvanta
