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
    bool Write(const ReportMessage& message) override;
    [[nodiscard]] ReportMessage Transform(ReportMessage message) override;

private:
    std::string root_;
};

/// The reverse: puts the marker in the place of the root, for files that lie below it. The root is a normalised
/// absolute path.
class SourceRootHider : public ITransform {
public:
    SourceRootHider(IOutput* next, std::string root, Orvanta::PathRules rules = Orvanta::HostPathRules());
    [[nodiscard]] ReportMessage Transform(ReportMessage message) override;

private:
    [[nodiscard]] bool LiesBelowRoot(std::string_view file) const;

    std::string root_; // without a separator at its end
    Orvanta::PathRules rules_;
};

} // namespace OrvlogConverter
