#pragma once

#include "platform/Paths.h"
#include "report/ReportOutputs.h"
#include "report/SourceRootTransformer.h"
#include "suppress/SuppressBaseFilter.h"

#include <cstddef>
#include <optional>
#include <string>

namespace Orvanta {

/// The folder that a report writes as "|?|".
struct SourceRoot {
    std::string path; ///< empty: paths stay as they are
    PathRules rules = HostPathRules();
};

/// What stands between the findings of a run and its report: the base hides what it holds, what is left is watched,
/// then the root of the source tree leaves the paths.
class FindingChain {
public:
    /// Without a base nothing is hidden; what is goes to `hidden`, which may be null. All but the root outlive the
    /// chain.
    FindingChain(OrvlogConverter::ReportOutput& report, const std::optional<OrvlogConverter::SuppressBase>& base,
                 OrvlogConverter::IOutput& watcher, const SourceRoot& sourceRoot,
                 OrvlogConverter::IOutput* hidden = nullptr);

    /// Where findings go in.
    [[nodiscard]] OrvlogConverter::IOutput& Front() { return filter_; }

    /// How many findings the base has hidden so far.
    [[nodiscard]] std::size_t HiddenCount() const noexcept { return filter_.HiddenCount(); }

private:
    /// Shows every finding to an output beside the road.
    class Watch : public OrvlogConverter::IFilter {
    public:
        Watch(OrvlogConverter::IOutput* next, OrvlogConverter::IOutput& watcher) : IFilter(next), watcher_(watcher) {}

        bool Accept(const OrvlogConverter::ReportMessage& message) override {
            watcher_.Write(message);
            return true;
        }

    private:
        OrvlogConverter::IOutput& watcher_;
    };

    // The last stage first: each is made with the next one's address.
    std::optional<OrvlogConverter::SourceRootHider> root_;
    Watch watch_;
    OrvlogConverter::SuppressBaseFilter filter_;
};

} // namespace Orvanta
