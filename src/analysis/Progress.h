#pragma once

#include "platform/Log.h"

#include <mutex>
#include <string>
#include <string_view>

namespace Orvanta {

/// The stages that a unit goes through, as progress counts them.
namespace ProgressStage {
inline constexpr unsigned Analyzing = 0;
inline constexpr unsigned ParsingIncludes = 1;
inline constexpr unsigned Parsing = 2;
} // namespace ProgressStage

/// The part of a run's progress that one pass over the units is.
struct PercentRange {
    unsigned begin = 0;
    unsigned end = 100;
};

/// Receives how far a run has come. Any thread may call it.
class AnalyzerProgress {
public:
    virtual ~AnalyzerProgress() = default;
    /// One unit has gone through a stage, a number of ProgressStage.
    virtual void Step(unsigned percent, unsigned stage, std::string_view file) = 0;
    /// The run has ended: `summary` holds whole lines.
    virtual void Finish(std::string_view summary) = 0;
    /// One message line.
    virtual void Message(std::string_view line) = 0;
};

/// Shows progress on the console: one line a step, percentages that never fall, and the summary.
class StdOutProgress : public AnalyzerProgress {
public:
    enum class Display {
        Shown,
        SummaryOnly, ///< no lines of steps
        Hidden,
    };

    /// `log` takes the message lines and must outlive this. Messages are shown even when progress is hidden.
    StdOutProgress(Display display, Log& log) : display_(display), log_(log) {}

    /// Writes one line to standard output, never with a lower percentage than the line before; nothing unless steps
    /// are shown.
    void Step(unsigned percent, unsigned stage, std::string_view file) override;
    /// Shows the summary, unless progress is hidden.
    void Finish(std::string_view summary) override;
    /// Shows the line in any case.
    void Message(std::string_view line) override;

private:
    Display display_;
    Log& log_; // has the mutex of the message lines
    std::mutex progressMutex_;
    unsigned highestPercent_ = 0; // guarded by progressMutex_
};

/// The text of a progress line, without its line feed.
[[nodiscard]] std::string ProgressLine(unsigned percent, unsigned stage, std::string_view file);

} // namespace Orvanta
