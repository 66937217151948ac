#include "app/RunStatistics.h"

#include "analysis/RunSummary.h"
#include "platform/Files.h"
#include "report/JsonText.h"

#include <limits>
#include <string_view>
#include <utility>

namespace Orvanta {

namespace {

using OrvlogConverter::AppendJsonString;

// The words of the summary.
const char* FateOf(AnalyzerStatus status) {
    switch (status) {
    case AnalyzerStatus::Analyzed:
        return "analyzed";
    case AnalyzerStatus::PreprocessingFailed:
    case AnalyzerStatus::CoreFailed:
    case AnalyzerStatus::Failed:
        break;
    case AnalyzerStatus::Stopped:
        return "stopped";
    case AnalyzerStatus::Excluded:
        return "excluded";
    case AnalyzerStatus::CarriedOver:
    case AnalyzerStatus::FromCache:
        return "carried over";
    case AnalyzerStatus::NotListed:
        return "skipped";
    }
    return "failed";
}

void AppendMember(std::string& line, const char* name, std::string_view text) {
    line.append(",\"").append(name).append("\":");
    AppendJsonString(line, text);
}

// In milliseconds and bytes: whole numbers say enough.
void AppendCost(std::string& line, const char* name, const ProcessCost& cost) {
    const auto milliseconds = [](std::chrono::microseconds time) {
        return std::to_string(std::chrono::round<std::chrono::milliseconds>(time).count());
    };
    line.append(",\"").append(name).append("\":{\"wallMs\":").append(milliseconds(cost.wall));
    line.append(",\"cpuMs\":").append(milliseconds(cost.processor));
    line.append(",\"peakBytes\":").append(std::to_string(cost.peakMemory)).append("}");
}

std::string LineBegin(std::size_t invocation, std::string_view unit, const char* fate) {
    std::string line = "{\"invocation\":" + std::to_string(invocation);
    AppendMember(line, "unit", unit);
    AppendMember(line, "fate", fate);
    return line;
}

// `line` begins it.
std::string UnitLine(std::string line, AnalyzerStatus status, const std::string* reason, const UnitCost& cost) {
    if (reason != nullptr) {
        AppendMember(line, "reason", *reason);
    }
    if (status == AnalyzerStatus::FromCache) {
        AppendMember(line, "cache", "hit");
    }
    // What was not run took nothing, which is not the same as no time.
    if (cost.compiler.wall.count() > 0) {
        AppendCost(line, "compiler", cost.compiler);
    }
    if (cost.core.wall.count() > 0) {
        AppendCost(line, "core", cost.core);
    }
    if (cost.textBytes > 0) {
        line += ",\"textBytes\":" + std::to_string(cost.textBytes);
    }
    return line + "}\n";
}

std::string SkippedLine(const SkippedInvocation& skipped) {
    std::string line = LineBegin(skipped.invocation, skipped.what, IsFailure(skipped.fate) ? "failed" : "skipped");
    AppendMember(line, "reason", skipped.reason);
    return line + "}\n";
}

} // namespace

RunStatistics::RunStatistics(std::string path) : path_(std::move(path)) {
    // Begun and given up: what a run that is killed had begun would stay there. What is no file can't be tried.
    if (const PathKind kind = KindOf(path_); kind == PathKind::Nothing || kind == PathKind::File) {
        const AtomicFile attempt(path_);
    }
}

void RunStatistics::Write(const ToldInput& input, const RunOutcome& outcome, std::span<const UnitCost> costs) const {
    constexpr std::size_t BlockSize = 65536;
    AtomicFile file(path_);
    std::string block;
    const auto append = [&](const std::string& line) {
        block += line;
        if (block.size() >= BlockSize) {
            file.Append(block);
            block.clear();
        }
    };
    auto skipped = input.Skipped().begin();
    const auto writeSkippedBefore = [&](std::size_t invocation) {
        for (; skipped != input.Skipped().end() && skipped->invocation < invocation; ++skipped) {
            append(SkippedLine(*skipped));
        }
    };
    for (std::size_t unit = 0; unit < input.UnitCount(); ++unit) {
        const std::size_t invocation = input.InvocationOf(unit);
        writeSkippedBefore(invocation);
        const AnalyzerStatus status = outcome.statuses[unit];
        const auto failure = outcome.failures.find(unit);
        append(UnitLine(LineBegin(invocation, input.SourceOf(unit), FateOf(status)), status,
                        failure == outcome.failures.end() ? nullptr : &failure->second,
                        costs.empty() ? UnitCost() : costs[unit]));
    }
    writeSkippedBefore(std::numeric_limits<std::size_t>::max());
    file.Append(block);
    file.Commit();
}

} // namespace Orvanta
