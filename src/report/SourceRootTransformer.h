#pragma once

#include "platform/Paths.h"
#include "report/IOutput.h"

#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Stands in a report for the folder that the sources lie in.
inline constexpr std::string_view SourceRootMarker = "|?|";

/// Puts the root of the source tree in the place of the marker, in every position. Without a root, messages pass as the
/// very objects that they are.
class SourceRootTransformer : public ITransform {
public:
    /// An empty root leaves every message as it is.
    SourceRootTransformer(IOutput* next, std::string root);
    /// What the next stage says.
    bool Write(const ReportMessage& message) override;
    /// Replaces the first marker in the file of each position.
    [[nodiscard]] ReportMessage Transform(ReportMessage message) override;

private:
    std::string root_;
};

/// The reverse: puts the marker in the place of the root, for files that lie below it. The root is a normalised
/// absolute path.
class SourceRootHider : public ITransform {
public:
    /// Separators at the root's end don't count. `next` may be null, and outlives the stage.
    SourceRootHider(IOutput* next, std::string root, Orvanta::PathRules rules = Orvanta::HostPathRules());
    /// Positions elsewhere stay as they are.
    [[nodiscard]] ReportMessage Transform(ReportMessage message) override;

private:
    // Whether the file is inside the root by whole components; the root itself is not.
    [[nodiscard]] bool LiesBelowRoot(std::string_view file) const;

    std::string root_; // without a separator at its end
    Orvanta::PathRules rules_;
};

} // namespace OrvlogConverter
