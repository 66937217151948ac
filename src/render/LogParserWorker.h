#pragma once

#include "platform/StopFlag.h"
#include "render/FindingGate.h"
#include "render/RenderTypes.h"
#include "render/ReportDifference.h"
#include "report/IWorker.h"
#include "report/MessageFilter.h"
#include "report/MultipleOutput.h"
#include "suppress/SuppressBase.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

/// What a `LogParserWorker` is to do.
struct LogParserSettings {
    enum class DocumentationLink { Write, LeaveOut };

    std::vector<std::string> reports; ///< read in this order
    std::vector<RenderTarget> targets = {};
    MessageFilterSettings filter = {};
    std::string sourceRoot = {}; ///< put in the place of "|?|"; empty leaves it
    DocumentationLink documentationLink = DocumentationLink::Write;
    RenderSettings render = {};
    std::string suppressBase = {};        ///< path of a base that hides what it holds; empty: none
    bool keepsSuppressed = false;         ///< forms that can mark what the base holds get it all the same
    std::string earlierReport = {};       ///< path of a report that hides what it holds; empty: none
    std::optional<FindingGate> gate = {}; ///< counts what is shown and stops a build
};

/// Renders reports: passes their messages through the filters into files of other forms, and says how many there were.
class LogParserWorker : public IWorker {
public:
    /// `stop` outlives the worker.
    LogParserWorker(LogParserSettings settings, const Orvanta::StopFlag& stop);

    /// Does all of it, once: a worker is not run again.
    /// Outputs take their places only when every report was read.
    /// Where it throws before that, whatever stood at their paths is still there.
    /// \throws ReportException
    void Run() override;

    /// The findings that the gate matched; 0 without a gate. After `Run`.
    [[nodiscard]] std::size_t GateMatches() const noexcept { return gate_ == nullptr ? 0 : gate_->Count(); }

private:
    /// Tells of each given flag that no target has a use for.
    void PrintIgnoredFlags() const;
    /// Fills `earlier_`; leaves it empty when there is no earlier report.
    void ReadEarlierReport();
    /// Fills `outputs_`, and `gate_` when there is one.
    /// \throws ConfigException when there is no target; FilesystemException
    void OpenTargets();
    /// Hands on what a report says of the guidelines that were looked at; an empty text says that it does not tell.
    /// \throws ParseException, with the report's path
    void AddChecked(const std::string& report, const std::string& checked) const;
    /// Adds an output with its own stages in front. A null base hides nothing.
    void AddOutput(std::unique_ptr<IOutput> output, MessageFilterSettings filter, const SuppressBase* base);

    /// Null without a base; lives as long as the worker.
    [[nodiscard]] const SuppressBase* Base() const noexcept { return base_ ? &*base_ : nullptr; }

    /// Shows the user a line: on standard error when a report goes to standard output.
    void Tell(std::string_view line) const;

    LogParserSettings settings_;
    const Orvanta::StopFlag& stop_;
    std::optional<SuppressBase> base_;
    EarlierFindings earlier_;
    const GateOutput* gate_ = nullptr; // of the outputs
    MultipleOutput outputs_;
};

} // namespace OrvlogConverter
