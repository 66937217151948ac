#pragma once

#include "render/misra/MisraEdition.h"

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace OrvlogConverter {

/// Categories that a project has agreed on, in the place of the standard's.
using MisraCategoryPlan = std::map<MisraGuideline, MisraCategory>;

/// Reads a plan: lines "GUIDELINE = CATEGORY", empty ones, and comments behind "#". A plan may only make a guideline
/// more binding, or disapply an advisory one. \throws ConfigException: the path, the line and what is wrong with it;
/// FilesystemException
[[nodiscard]] MisraCategoryPlan ReadMisraCategoryPlan(const std::string& path, const MisraEditions& editions);

/// Which guidelines an analysis looked at, as far as that is known.
class MisraChecked {
public:
    /// A file that names them, one or several a line, joined by commas; "#" begins a comment. What the file says
    /// counts, whatever reports say. \throws ConfigException: the path, the line and what is wrong; FilesystemException
    void ReadFile(const std::string& path);

    /// What a report says of itself: the value of its member "checked", empty when it has none. Of several reports a
    /// guideline was looked at when all of them say so; what one report does not tell is not known.
    /// \throws ParseException for a value that is not of that form
    void AddReport(std::string_view json);

    /// Whether it is known: from the file, or from every report.
    [[nodiscard]] bool IsKnown() const noexcept { return hasFile_ || (hasReports_ && !isReportSilent_); }

    /// Empty when nothing is known.
    [[nodiscard]] const std::set<MisraGuideline>& Guidelines() const noexcept { return guidelines_; }

private:
    std::set<MisraGuideline> guidelines_;
    bool hasFile_ = false;
    bool hasReports_ = false;
    bool isReportSilent_ = false;
};

} // namespace OrvlogConverter
