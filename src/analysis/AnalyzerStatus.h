#pragma once

namespace Orvanta {

/// How the run of one unit ended.
enum class AnalyzerStatus {
    Analyzed = 0,
    PreprocessingFailed = 1,
    CoreFailed = 2,
    Failed = 3,  ///< for another reason, such as a settings file that can't be written
    Stopped = 4, ///< the user stopped the run before the unit was done, or before it was started
    Excluded = 5,
    CarriedOver = 6, ///< nothing has changed since its last run: what that found is reported again
    FromCache = 8,   ///< its text was analyzed before, here or elsewhere: what that found is reported again
    NotListed = 7,   ///< the list of source files names neither its source nor a file that it includes
};

/// Which stage of an intermodular analysis a unit is run for.
enum class IntermodularAnalysisMode {
    FirstRun,  ///< collecting
    Merge,     ///< linking what was collected
    SecondRun, ///< performing
    None,      ///< an ordinary analysis
};

/// Whether the status is a failure of the unit.
[[nodiscard]] constexpr bool IsFailure(AnalyzerStatus status) noexcept {
    return status == AnalyzerStatus::PreprocessingFailed || status == AnalyzerStatus::CoreFailed ||
           status == AnalyzerStatus::Failed;
}

} // namespace Orvanta
