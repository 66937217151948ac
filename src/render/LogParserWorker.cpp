#include "render/LogParserWorker.h"

#include "platform/Console.h"
#include "report/DocumentationLink.h"
#include "report/DuplicateFilter.h"
#include "report/Exceptions.h"
#include "report/ReportPass.h"
#include "report/SourceRootTransformer.h"
#include "report/WholeFile.h"
#include "suppress/NoticeFilter.h"
#include "suppress/SuppressBaseFilter.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

namespace OrvlogConverter {

namespace {

/// What stands in front of one output, which it owns.
/// Each output has its own stages: one may keep what another leaves out, such as suppressed findings.
class TargetChain : public IOutput {
public:
    TargetChain(std::unique_ptr<IOutput> output, MessageFilterSettings filter, const SuppressBase* base)
        // Last stage first, as each holds the address of the next. The filter of the user's flags stands in front: what
        // it drops needs no entry of a base made.
        : output_(std::move(output)), notices_(output_.get()), suppressed_(&notices_, base),
          filter_(&suppressed_, std::move(filter)) {}

    void Begin() override { filter_.Begin(); }

    bool Write(const ReportMessage& message) override { return filter_.Write(message); }

    void End() override { filter_.End(); }

private:
    std::unique_ptr<IOutput> output_;
    NoticeFilter notices_;
    SuppressBaseFilter suppressed_;
    MessageFilter filter_;
};

} // namespace

LogParserWorker::LogParserWorker(LogParserSettings settings, const Orvanta::StopFlag& stop)
    : settings_(std::move(settings)), stop_(stop) {}

void LogParserWorker::Run() {
    if (!settings_.suppressBase.empty()) {
        base_ = SuppressBase::Read(settings_.suppressBase);
    }
    // Read before any output is opened: with a path that is wrong, no output has to be taken back.
    ReadEarlierReport();
    OpenTargets();
    const bool isCompared = !settings_.earlierReport.empty();
    NewFindingFilter onlyNew(&outputs_, earlier_);
    DuplicateFilter once(isCompared ? static_cast<IOutput*>(&onlyNew) : &outputs_);
    // One report holds each finding once already.
    IOutput* const merged = settings_.reports.size() > 1 ? &once
                            : isCompared                 ? static_cast<IOutput*>(&onlyNew)
                                                         : &outputs_;
    SourceRootTransformer chain(merged, settings_.sourceRoot);
    chain.Begin();
    if (settings_.documentationLink == LogParserSettings::DocumentationLink::Write) {
        // The reports bring links of their own; NoticeFilter lets only this first one pass.
        chain.Write(DocumentationLinkMessage());
    }
    std::size_t total = 0;
    std::size_t taken = 0;
    for (const std::string& report : settings_.reports) {
        // Kept until the report has been read: the member may stand in front of the messages or behind them.
        std::string checked;
        const ReportReceiver receiver = {
            [&](const ReportMessage& message, std::string_view /*text*/) { taken += chain.Write(message) ? 1U : 0U; },
            [&](const std::string& key, const std::string& value) {
                if (key == "checked") {
                    checked = value;
                }
            }};
        // Throws when the user stops: then nothing is committed, and all outputs stay as they were.
        total += PassReport(report, receiver, stop_);
        AddChecked(report, checked);
    }
    // Only now do the outputs take their places. The counts are told when that has gone well.
    chain.End();
    Tell("Total messages: " + std::to_string(total));
    Tell("Filtered messages: " + std::to_string(taken));
    if (gate_ != nullptr) {
        Tell("Findings that stop the build: " + std::to_string(gate_->Count()));
    }
    if (isCompared) {
        Tell("Gone since " + settings_.earlierReport + ": " + std::to_string(earlier_.CountGone()));
    }
}

// Passes the earlier report through the same stages as the others, into the set of known findings.
// What the filters hide now would else count as gone.
void LogParserWorker::ReadEarlierReport() {
    if (settings_.earlierReport.empty()) {
        return;
    }
    SuppressBaseFilter suppressed(&earlier_, Base());
    MessageFilter filter(&suppressed, settings_.filter);
    SourceRootTransformer chain(&filter, settings_.sourceRoot);
    PassReport(settings_.earlierReport, {[&chain](const ReportMessage& message, std::string_view /*text*/) {
                   chain.Write(message);
               }},
               stop_);
}

// The member's reader does not know which of several reports it reads.
void LogParserWorker::AddChecked(const std::string& report, const std::string& checked) const {
    try {
        settings_.render.misraChecked->AddReport(checked);
    } catch (const ParseException& error) {
        throw ParseException(report + ": " + error.what());
    }
}

void LogParserWorker::OpenTargets() {
    if (settings_.targets.empty()) {
        throw ConfigException("Render type is required");
    }
    PrintIgnoredFlags();
    if (settings_.documentationLink == LogParserSettings::DocumentationLink::LeaveOut) {
        settings_.filter.disabledCodes.emplace(DocumentationLinkCode);
    }
    // Set before the outputs are made, since each takes a copy of the settings.
    settings_.render.tell = [this](std::string_view line) {
        Tell(line);
    };
    settings_.render.comparedWith = settings_.earlierReport;
    settings_.render.countGone = [this] {
        return earlier_.CountGone();
    };
    for (const RenderTarget& target : settings_.targets) {
        // Copies: what one form needs must not change what the next one gets.
        MessageFilterSettings filter = settings_.filter;
        RenderSettings render = settings_.render;
        const bool isKeeping = settings_.keepsSuppressed && target.type->marksSuppressed;
        if (isKeeping) {
            render.suppressed = Base();
        }
        // A report on MISRA counts deviations, and a form that can mark suppressed findings tells marked ones the same
        // way.
        if (isKeeping || target.type->isMisra) {
            filter.falseAlarms = MessageFilterSettings::FalseAlarms::Keep;
        }
        AddOutput(target.type->make(target.path, render), std::move(filter), isKeeping ? nullptr : Base());
    }
    if (settings_.gate) {
        // It stands behind the filters and the base too: what they hide stops no build.
        auto gate = std::make_unique<GateOutput>(*settings_.gate);
        gate_ = gate.get();
        AddOutput(std::move(gate), settings_.filter, Base());
    }
}

void LogParserWorker::AddOutput(std::unique_ptr<IOutput> output, MessageFilterSettings filter,
                                const SuppressBase* base) {
    outputs_.Add(std::make_unique<TargetChain>(std::move(output), std::move(filter), base));
}

// A report on standard output is to stay one.
// One foreign line would make JSON or a table unreadable to whatever reads the pipe.
void LogParserWorker::Tell(std::string_view line) const {
    const bool isOutputTaken =
        std::any_of(settings_.targets.begin(), settings_.targets.end(),
                    [](const RenderTarget& target) { return target.path == StandardStreamPath; });
    if (isOutputTaken) {
        Orvanta::WriteToStandardError(std::string(line) + "\n");
    } else {
        Orvanta::PrintLine(line);
    }
}

// A warning and no error: the other forms are right without them.
void LogParserWorker::PrintIgnoredFlags() const {
    const bool isMisra = std::any_of(settings_.targets.begin(), settings_.targets.end(),
                                     [](const RenderTarget& target) { return target.type->isMisra; });
    const std::pair<bool, const char*> flags[] = {
        {settings_.render.categoriesPath.has_value(), "grp"},
        {settings_.render.countDeviations, "misra_deviations"},
        {!settings_.render.misraStandards.empty(), "misra-standard"},
    };
    for (const auto& [isGiven, name] : flags) {
        if (isGiven && !isMisra) {
            Tell(std::string("The use of the '") + name +
                 "' flag is valid only for the 'misra' format. Otherwise, it will be ignored.");
        }
    }
}

} // namespace OrvlogConverter
