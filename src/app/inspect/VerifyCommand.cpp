#include "app/inspect/VerifyCommand.h"

#include "analysis/PassProgress.h"
#include "analysis/RunOutcome.h"
#include "analysis/UnitPlanner.h"
#include "analysis/WorkerPool.h"
#include "app/InputReading.h"
#include "app/RunSetup.h"
#include "app/inspect/InspectInput.h"
#include "app/inspect/UnitVerifier.h"
#include "buildinput/InvocationCollector.h"
#include "platform/Console.h"
#include "platform/Exceptions.h"
#include "platform/StopFlag.h"
#include "platform/TemporaryFolder.h"

#include <args.hxx>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <unordered_map>
#include <utility>

namespace Orvanta {

namespace {

using Json = nlohmann::ordered_json;
using Outcome = UnitVerification::Outcome;

// For both runs: what asks for the date or the time gets the same one.
constexpr const char* DateVariable = "SOURCE_DATE_EPOCH";

std::shared_ptr<const EnvironmentBlock> WithFixedDate(const EnvironmentBlock& block) {
    Environment variables;
    for (const std::string& entry : block.Entries()) {
        const std::size_t equals = std::min(entry.find('=', 1), entry.size());
        variables.emplace(entry.substr(0, equals), entry.substr(std::min(equals + 1, entry.size())));
    }
    variables.emplace(DateVariable, "0"); // unless the build has set it
    return std::make_shared<const EnvironmentBlock>(variables);
}

/// One run over all units of a build.
class Verification {
public:
    Verification(InspectInput& input, AnalyzerProgress& progress) : input_(input), progress_(progress) {
        places_.unitFolder = temporary_.Path();
        places_.temporaryFolder = temporary_.Path();
    }

    /// \throws ZelmException, ZelmRcException after a stop
    void Run();

    [[nodiscard]] std::string Text() const;
    [[nodiscard]] Json Document() const;

    /// Whether all units were compared, and found equal.
    [[nodiscard]] bool IsClean() const {
        return Count(Outcome::Equal) + Count(Outcome::LeftOut) == results_.size() && Count(Outcome::Equal) > 0;
    }

private:
    void ReadUnits();
    [[nodiscard]] UnitVerification Verify(UnitPlanner& planner, std::size_t unit, PassProgress& progress);
    [[nodiscard]] std::size_t Count(Outcome outcome) const;
    [[nodiscard]] std::string Summary() const;

    InspectInput& input_;
    AnalyzerProgress& progress_;
    TemporaryFolder temporary_;
    RunPlaces places_;
    CollectedCommands commands_;
    std::unordered_map<std::size_t, InvocationTrail> trails_; // by invocation; of those with response files
    std::vector<UnitVerification> results_;                   // by unit; each is written by one worker
};

void Verification::ReadUnits() {
    CompilerIdentifier identifier(input_.settings, input_.log, ProcessStopFlag());
    InvocationCollector collector(input_.settings, input_.registry, identifier, input_.log);
    InvocationSieve sieve = {[](std::span<const std::string>) { return true; }, true};
    collector.TakeBy(sieve);
    if (input_.options.sourceFile) {
        AddSingleFile(input_.options, collector);
    } else {
        ReadBuildInput(ExistingInput(input_.options), collector);
    }
    commands_ = collector.Take();
    for (InvocationTrail& trail : sieve.trails) {
        if (!trail.files.empty()) {
            trails_.emplace(trail.invocation, std::move(trail));
        }
    }
    if (commands_.units.empty()) {
        throw ZelmException("No source file to compare");
    }
    results_.resize(commands_.units.size());
}

UnitVerification Verification::Verify(UnitPlanner& planner, std::size_t unit, PassProgress& progress) {
    try {
        UnitPlan plan = planner.Plan(commands_.units[unit], unit, IntermodularAnalysisMode::None);
        if (plan.verdict != UnitVerdict::Analyze) {
            return {Outcome::LeftOut};
        }
        plan.environment = WithFixedDate(*plan.environment);
        const auto trail = trails_.find(commands_.units[unit].invocation);
        UnitRunContext context = {input_.settings, places_, input_.log, ProcessStopFlag(), {}};
        context.limits.outputBytes = input_.settings.limits.outputBytes;
        if (input_.settings.limits.time) {
            context.limits.deadline = std::chrono::steady_clock::now() + *input_.settings.limits.time;
        }
        return UnitVerifier(plan, trail == trails_.end() ? nullptr : &trail->second,
                            input_.settings.extraIncludes.size(), context, progress)
            .Verify();
    } catch (const std::exception& error) {
        return {Outcome::Failed, error.what()};
    }
}

void Verification::Run() {
    const StopFlag& stop = ProcessStopFlag();
    ReadUnits();
    UnitPlanner planner(input_.settings, input_.registry, places_, input_.log, stop);
    PassProgress progress(progress_, results_.size(), {});
    WorkerPool pool(std::min<std::size_t>(ThreadCount(input_.options), results_.size()));
    for (std::size_t unit = 0; unit < results_.size() && !stop.IsSet(); ++unit) {
        while (!stop.IsSet() && !pool.WaitForRoom(PollInterval)) {
        }
        pool.push_task([this, &planner, &progress, &stop, unit] {
            if (!stop.IsSet()) {
                results_[unit] = Verify(planner, unit, progress);
                progress.CountFinished();
                progress.Step(ProgressStage::Parsing, SourcePath(commands_.units[unit]));
            }
        });
    }
    pool.WaitForTasks();
    if (stop.IsSet()) {
        throw ZelmRcException(InterruptedExitCode);
    }
}

std::size_t Verification::Count(Outcome outcome) const {
    return static_cast<std::size_t>(std::count_if(results_.begin(), results_.end(),
                                                  [outcome](const auto& result) { return result.outcome == outcome; }));
}

std::string Verification::Summary() const {
    const std::size_t equal = Count(Outcome::Equal);
    const std::size_t compared = equal + Count(Outcome::Different);
    std::array<char, 16> share{};
    constexpr double Hundred = 100;
    std::snprintf(share.data(), share.size(), "%.1f %%",
                  compared == 0 ? 0.0 : Hundred * static_cast<double>(equal) / static_cast<double>(compared));
    std::string text =
        std::to_string(equal) + " of " + std::to_string(compared) + " texts are equal (" + share.data() + ")";
    if (const std::size_t failed = Count(Outcome::Failed); failed > 0) {
        text += ", " + std::to_string(failed) + " can't be preprocessed";
    }
    if (const std::size_t leftOut = Count(Outcome::LeftOut); leftOut > 0) {
        text += ", " + std::to_string(leftOut) + " are excluded";
    }
    return text + "\n";
}

std::string Verification::Text() const {
    std::string text;
    std::map<std::string, std::size_t> byCause;
    for (std::size_t unit = 0; unit < results_.size(); ++unit) {
        const UnitVerification& result = results_[unit];
        const std::string name =
            SourcePath(commands_.units[unit]) + " (entry " + std::to_string(commands_.units[unit].invocation) + "): ";
        if (result.outcome == Outcome::Failed) {
            text += name + result.reason + "\n";
        } else if (result.outcome == Outcome::Different) {
            text += name + "the text differs";
            for (const std::string& cause : result.causes) {
                text += (&cause == &result.causes.front() ? " because of " : ", ") + cause;
                ++byCause[cause];
            }
            text += "\n  " + (result.place.empty() ? "" : "at " + result.place + "\n  ") +
                    "driver: " + result.driverLine + "\n  build:  " + result.buildLine + "\n";
        }
    }
    for (const auto& [cause, count] : byCause) {
        text += "Because of " + cause + ": " + std::to_string(count) + "\n";
    }
    return text + Summary();
}

Json Verification::Document() const {
    Json differences = Json::array();
    Json failures = Json::array();
    for (std::size_t unit = 0; unit < results_.size(); ++unit) {
        const UnitVerification& result = results_[unit];
        Json entry = {{"source", SourcePath(commands_.units[unit])}, {"entry", commands_.units[unit].invocation}};
        if (result.outcome == Outcome::Failed) {
            entry["reason"] = result.reason;
            failures.push_back(std::move(entry));
        } else if (result.outcome == Outcome::Different) {
            entry["causes"] = result.causes;
            entry["place"] = result.place;
            entry["driver"] = result.driverLine;
            entry["build"] = result.buildLine;
            differences.push_back(std::move(entry));
        }
    }
    return {{"units", results_.size()},
            {"equal", Count(Outcome::Equal)},
            {"leftOut", Count(Outcome::LeftOut)},
            {"differences", std::move(differences)},
            {"failures", std::move(failures)}};
}

std::vector<std::string_view> OptionNames() {
    std::vector<std::string_view> names(std::begin(InputOptionNames), std::end(InputOptionNames));
    names.insert(names.end(), {"threads", "quiet", "timeout", "max-output"});
    return names;
}

} // namespace

void VerifyCommand(args::Subparser& parser) {
    args::Flag asJson(parser, "json", "Write one JSON document instead of lines", {"json"});
    AnalyzeOptions options = ParseSharedOptions(parser, OptionNames());
    if (asJson) {
        PlaceMessages(MessagePlace::StandardError);
    }
    InspectInput input(std::move(options));
    for (const std::string& warning : input.keyWarnings) {
        PrintLine(warning);
    }
    StdOutProgress progress(
        input.options.quiet || asJson ? StdOutProgress::Display::Hidden : StdOutProgress::Display::Shown, input.log);
    Verification verification(input, progress);
    verification.Run();
    if (asJson) {
        WriteDocument(verification.Document());
    } else {
        WriteMessage(verification.Text());
    }
    if (!verification.IsClean()) {
        throw ZelmRcException(1);
    }
}

} // namespace Orvanta
