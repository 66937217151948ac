#include "analysis/RunSummary.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <map>
#include <set>
#include <sstream>
#include <unordered_map>

namespace Orvanta {

namespace {

// From the fate that tells least about an invocation to the one that tells most.
// WeightOf gives the index into this list: the two must agree.
constexpr std::size_t InvocationCounts::*CountsByWeight[] = {
    &InvocationCounts::skipped,  &InvocationCounts::excluded, &InvocationCounts::carriedOver,
    &InvocationCounts::analyzed, &InvocationCounts::stopped,  &InvocationCounts::failed,
};

// How much a status tells of an invocation with several units: a failure more than a success, which tells more than a
// unit that was left out.
std::size_t WeightOf(AnalyzerStatus status) {
    switch (status) {
    case AnalyzerStatus::NotListed:
        return 0;
    case AnalyzerStatus::Excluded:
        return 1;
    case AnalyzerStatus::CarriedOver:
    case AnalyzerStatus::FromCache:
        return 2;
    case AnalyzerStatus::Analyzed:
        return 3;
    case AnalyzerStatus::Stopped:
        return 4;
    case AnalyzerStatus::PreprocessingFailed:
    case AnalyzerStatus::CoreFailed:
    case AnalyzerStatus::Failed:
        break;
    }
    return 5;
}

// "N analyzed, N failed, ...": what has to be known always, the rest where there is some.
std::string CountsText(const InvocationCounts& counts) {
    enum class Shown { Always, WhenAny };

    // Which counts a person looks for even when they are zero, since their absence would leave a doubt.
    struct Part {
        std::size_t count;
        const char* word;
        Shown shown;
    };

    const Part parts[] = {
        {counts.analyzed, "analyzed", Shown::Always}, {counts.carriedOver, "carried over", Shown::WhenAny},
        {counts.failed, "failed", Shown::Always},     {counts.skipped, "skipped", Shown::Always},
        {counts.excluded, "excluded", Shown::Always}, {counts.stopped, "stopped", Shown::WhenAny},
    };
    std::string text;
    for (const Part& part : parts) {
        if (part.count > 0 || part.shown == Shown::Always) {
            text += (text.empty() ? "" : ", ") + std::to_string(part.count) + " " + part.word;
        }
    }
    return text;
}

// One line with the reasons and how many each; empty when nothing was skipped.
std::string SkippedText(const ToldInput& input, const InvocationCounts& counts) {
    std::map<std::string_view, std::size_t> byReason;
    // What remains of them when those with a reason of their own are taken off.
    std::size_t notListed = counts.skipped;
    for (const SkippedInvocation& skipped : input.Skipped()) {
        if (!IsFailure(skipped.fate)) {
            ++byReason[skipped.reason];
            --notListed;
        }
    }
    if (notListed > 0) {
        byReason["not in the list of source files"] = notListed;
    }
    std::string text;
    for (const auto& [reason, count] : byReason) {
        text += (text.empty() ? "Skipped: " : ", ") + std::to_string(count) + " " + std::string(reason);
    }
    return text.empty() ? text : text + "\n";
}

// The same counts, of the units themselves.
InvocationCounts CountUnits(const RunOutcome& outcome) {
    InvocationCounts counts;
    for (const AnalyzerStatus status : outcome.statuses) {
        ++(counts.*CountsByWeight[WeightOf(status)]);
    }
    return counts;
}

// One line: findings of each level, and those that a base hides, which are not in the report.
std::string FindingsText(const RunOutcome& outcome) {
    // Findings without a level are rare: they are only counted when there are some.
    const auto& levels = outcome.findingsByLevel;
    std::string text = "Findings: " + std::to_string(levels[1]) + " high, " + std::to_string(levels[2]) + " medium, " +
                       std::to_string(levels[3]) + " low";
    if (levels[0] > 0) {
        text += ", " + std::to_string(levels[0]) + " without a level";
    }
    if (outcome.hiddenFindings) {
        text += "; " + std::to_string(*outcome.hiddenFindings) + " more are hidden by the suppress file";
    }
    return text + "\n";
}

// Further lines of a reason are indented, so that each unit is found by its own line's start.
void AppendFailure(std::string& text, const std::string& what, std::string_view reason) {
    text += "  " + what + ": ";
    for (const char character : reason) {
        text += character;
        if (character == '\n') {
            text += "    ";
        }
    }
    text += '\n';
}

// Failures by their reason, each group where its first one stands.
class FailureGroups {
public:
    // `what` names several of them.
    explicit FailureGroups(const char* what) : what_(what) {}

    void Add(std::string name, std::string_view reason) {
        const auto [place, isNew] = places_.emplace(reason, groups_.size());
        if (isNew) {
            groups_.push_back({reason, {}});
        }
        groups_[place->second].names.push_back(std::move(name));
    }

    [[nodiscard]] std::string Text(FailureForm form) const {
        constexpr std::size_t SmallestGroup = 4; // fewer take no more lines by themselves
        std::string text;
        for (const Group& group : groups_) {
            if (form == FailureForm::Grouped && group.names.size() >= SmallestGroup) {
                AppendGroup(text, group);
                continue;
            }
            for (const std::string& name : group.names) {
                AppendFailure(text, name, group.reason);
            }
        }
        return text;
    }

private:
    struct Group {
        std::string_view reason;
        std::vector<std::string> names;
    };

    void AppendGroup(std::string& text, const Group& group) const {
        AppendFailure(text, std::to_string(group.names.size()) + " " + what_, group.reason);
        text += "    " + group.names[0] + ", " + group.names[1] + " and " + std::to_string(group.names.size() - 2) +
                " more (--verbose names each)\n";
    }

    const char* what_;
    std::vector<Group> groups_;
    std::unordered_map<std::string_view, std::size_t> places_; // of the groups, by reason
};

} // namespace

std::string ElapsedText(std::chrono::milliseconds elapsed) {
    // By whole numbers: a floating second would round 59.96 up to 60.0.
    const auto tenths = elapsed.count() / 100;
    std::ostringstream text;
    text << tenths / 36000 << ':' << std::setfill('0') << std::setw(2) << tenths / 600 % 60 << ':' << std::setw(2)
         << tenths / 10 % 60 << '.' << tenths % 10;
    return text.str();
}

bool IsFailure(InvocationFate fate) noexcept {
    return fate == InvocationFate::CompilerUnusable || fate == InvocationFate::Unreadable;
}

InvocationCounts CountInvocations(const ToldInput& input, const RunOutcome& outcome) {
    InvocationCounts counts;
    for (const SkippedInvocation& skipped : input.Skipped()) {
        ++(IsFailure(skipped.fate) ? counts.failed : counts.skipped);
    }
    // The units of one invocation stand next to each other.
    for (std::size_t unit = 0; unit < input.UnitCount();) {
        const std::size_t invocation = input.InvocationOf(unit);
        std::size_t weight = 0;
        for (; unit < input.UnitCount() && input.InvocationOf(unit) == invocation; ++unit) {
            weight = std::max(weight, WeightOf(outcome.statuses[unit]));
        }
        ++(counts.*CountsByWeight[weight]);
    }
    return counts;
}

std::string SummaryText(std::string_view done, const ToldInput& input, const RunOutcome& outcome,
                        std::chrono::milliseconds elapsed, const std::string& reportPath) {
    const InvocationCounts counts = CountInvocations(input, outcome);
    const InvocationCounts units = CountUnits(outcome);
    std::string text = std::string(done) + " in " + ElapsedText(elapsed) + "\n";
    text += "Compiler invocations: " + std::to_string(counts.Total()) + " (" + CountsText(counts) + ")\n";
    // Only where some invocation compiles several sources do the two counts differ.
    if (units.Total() + input.Skipped().size() != counts.Total()) {
        text += "Source files of them: " + std::to_string(units.Total()) + " (" + CountsText(units) + ")\n";
    }
    text += SkippedText(input, counts);
    // Its findings were not counted: zeros would be wrong.
    if (!outcome.isReportKept) {
        text += FindingsText(outcome);
    }
    if (!reportPath.empty()) {
        text += "The results are saved to " + reportPath + "\n";
    }
    return text;
}

std::string ModulesText(const ToldInput& input, const RunOutcome& outcome) {
    const std::set<std::size_t>& units = outcome.importingModules;
    if (units.empty()) {
        return "";
    }
    return "Source files that import modules: " + std::to_string(units.size()) + ", the first is " +
           input.SourceOf(*units.begin()) + ". What modules export is not known to the core.\n";
}

std::string FailureList(const ToldInput& input, const RunOutcome& outcome, FailureForm form) {
    FailureGroups invocations("invocations");
    for (const SkippedInvocation& skipped : input.Skipped()) {
        if (IsFailure(skipped.fate)) {
            invocations.Add("invocation " + std::to_string(skipped.invocation) + " (" + skipped.what + ")",
                            skipped.reason);
        }
    }
    FailureGroups files("files");
    for (const auto& [unit, reason] : outcome.failures) {
        files.Add(input.SourceOf(unit), reason);
    }
    const std::string text = invocations.Text(form) + files.Text(form);
    return text.empty() ? text : "These could not be analyzed:\n" + text;
}

} // namespace Orvanta
