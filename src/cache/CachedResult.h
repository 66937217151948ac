#pragma once

#include "cache/RootMark.h"
#include "report/ReportMessage.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What is known of a unit whose text was analyzed before.
struct CachedResult {
    std::vector<OrvlogConverter::ReportMessage> findings; ///< the core's, in its order
    std::string output;                                   ///< what else the core printed on standard output
    std::optional<std::vector<std::string>> dependencies; ///< absolute; absent when nobody has asked for them
};

/// The result as a cache keeps it: compressed, with a checksum, its paths below the root marked. Absent for one that
/// can't be put back as it is.
/// \throws ZelmException when there is no memory for it
[[nodiscard]] std::optional<std::string> PackResult(const CachedResult& result, const RootMark& root);

/// The result that was packed, with the paths of this root; absent when the bytes are not what was packed, or of
/// another version.
[[nodiscard]] std::optional<CachedResult> UnpackResult(std::string_view bytes, const RootMark& root);

/// Whether the bytes are what was packed once.
[[nodiscard]] bool IsPackedResult(std::string_view bytes);

} // namespace Orvanta
