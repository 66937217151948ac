#include "analysis/SourceSelection.h"

#include "analysis/AnalyzerRunner.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace Orvanta {

namespace {

/// The form in which two names of one file are the same text.
std::string Comparable(std::string path) {
    return HostPathRules() == PathRules::Windows ? ToLowerAscii(path) : std::move(path);
}

} // namespace

void KeepListedSources(CollectedCommands& commands, std::span<const std::string> listed) {
    std::unordered_set<std::string> wanted;
    for (const std::string& path : listed) {
        wanted.insert(Comparable(path));
    }
    std::vector<CompileCommand> kept;
    std::vector<CompileCommand>& units = commands.units;
    for (std::size_t begin = 0; begin < units.size();) {
        const std::size_t invocation = units[begin].invocation;
        const std::size_t keptBefore = kept.size();
        std::string source(units[begin].SourceFile());
        for (; begin < units.size() && units[begin].invocation == invocation; ++begin) {
            if (wanted.contains(Comparable(SourcePath(units[begin])))) {
                kept.push_back(std::move(units[begin]));
            }
        }
        if (kept.size() == keptBefore) {
            commands.skipped.push_back(
                {invocation, InvocationFate::NotListed, std::move(source), "not in the list of source files"});
        }
    }
    units = std::move(kept);
    std::stable_sort(commands.skipped.begin(), commands.skipped.end(),
                     [](const SkippedInvocation& left, const SkippedInvocation& right) {
                         return left.invocation < right.invocation;
                     });
}

} // namespace Orvanta
