#include "app/FindingChain.h"

namespace Orvanta {

FindingChain::FindingChain(OrvlogConverter::ReportOutput& report,
                           const std::optional<OrvlogConverter::SuppressBase>& base, OrvlogConverter::IOutput& watcher,
                           const SourceRoot& sourceRoot, OrvlogConverter::IOutput* hidden)
    : root_(sourceRoot.path.empty()
                ? std::nullopt
                : std::make_optional<OrvlogConverter::SourceRootHider>(&report, sourceRoot.path, sourceRoot.rules)),
      watch_(root_ ? static_cast<OrvlogConverter::IOutput*>(&*root_) : &report, watcher),
      filter_(&watch_, base ? &*base : nullptr, hidden) {}

} // namespace Orvanta
