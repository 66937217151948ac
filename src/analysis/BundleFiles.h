#pragma once

#include "analysis/UnitEvidence.h"
#include "analysis/UnitPlan.h"
#include "analysis/UnitResult.h"

#include <chrono>
#include <string>

namespace Orvanta {

class PathScrubber;

/// A unit whose run has ended, and whose files are still there.
struct BundledUnit {
    const UnitPlan& plan;
    const UnitEvidence& evidence;
    const UnitResult& result;
    std::chrono::seconds elapsed; ///< all that was done with it
};

/// The versions of what has made the unit's result, beside its compiler's.
struct BundleMakers {
    std::string program;
    std::string core; ///< empty when it doesn't say
};

/// The file by which a folder is known for a bundle; what its text begins with is `BundleMark`.
inline constexpr const char* BundleRecordName = "bundle.json";
inline constexpr const char* BundleMark = "{\n \"format\": \"orvanta replay bundle 1\"";

/// Writes into a folder, which is empty, all that lets the core be run on the unit again without its project: its text
/// and settings, the copies of the other files that these name, what its programs said, and scripts that replay it.
/// With a `scrubber`, which is new, nothing in it has the names of the project's files or its comments; null: as they
/// are. \throws ZelmException and the standard library's exceptions
void WriteBundleFiles(const std::string& folder, const BundledUnit& unit, const BundleMakers& makers,
                      PathScrubber* scrubber);

/// Whether the core has left a line that is no finding.
[[nodiscard]] bool HasUnreadableFinding(const std::string& fragmentPath);

} // namespace Orvanta
