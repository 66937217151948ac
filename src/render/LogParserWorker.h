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

    /// Outputs take their places only when every report was read.
    /// \throws ReportException
    void Run() override;

    /// The findings that the gate matched; 0 without a gate. After `Run`.
    [[nodiscard]] std::size_t GateMatches() const noexcept { return gate_ == nullptr ? 0 : gate_->Count(); }

private:
    void PrintIgnoredFlags() const;
    void ReadEarlierReport();
    void OpenTargets();
    void AddChecked(const std::string& report, const std::string& checked) const;
    void AddOutput(std::unique_ptr<IOutput> output, MessageFilterSettings filter, const SuppressBase* base);

    [[nodiscard]] const SuppressBase* Base() const noexcept { return base_ ? &*base_ : nullptr; }

    void Tell(std::string_view line) const;

    LogParserSettings settings_;
    const Orvanta::StopFlag& stop_;
    std::optional<SuppressBase> base_;
    EarlierFindings earlier_;
    const GateOutput* gate_ = nullptr; // of the outputs
    MultipleOutput outputs_;
};

} // namespace OrvlogConverter
