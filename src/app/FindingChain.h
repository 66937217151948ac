#pragma once

#include "report/ReportOutputs.h"
#include "report/SourceRootTransformer.h"
#include "suppress/SuppressBaseFilter.h"

#include <cstddef>
#include <optional>
#include <string>

namespace Orvanta {

/// What stands between the findings of a run and its report: the base hides what it holds, then the root of the source
/// tree leaves the paths.
class FindingChain {
public:
    /// Without a base nothing is hidden, with an empty root paths stay as they are. `report` and `base` outlive the
    /// chain.
    FindingChain(OrvlogConverter::ReportOutput& report, const std::optional<OrvlogConverter::SuppressBase>& base,
                 const std::string& sourceRoot);

    /// Where findings go in.
    [[nodiscard]] OrvlogConverter::IOutput& Front() { return filter_; }

    [[nodiscard]] std::size_t HiddenCount() const noexcept { return filter_.HiddenCount(); }

private:
    std::optional<OrvlogConverter::SourceRootHider> root_;
    OrvlogConverter::SuppressBaseFilter filter_;
};

} // namespace Orvanta
