#pragma once

#include "report/IOutput.h"

namespace OrvlogConverter {

/// Lets what a report says of itself (where warnings are described, that its base is outdated) pass once, however often
/// the reports behind it were made from others.
class NoticeFilter : public IFilter {
public:
    using IFilter::IFilter;
    /// True for every finding, and for the first notice of each kind.
    bool Accept(const ReportMessage& message) override;

private:
    bool hasLink_ = false;
    bool hasOutdatedBase_ = false;
};

} // namespace OrvlogConverter
