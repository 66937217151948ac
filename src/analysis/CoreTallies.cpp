#include "analysis/CoreTallies.h"

#include "platform/Text.h"

#include <utility>

namespace Orvanta {

namespace {

constexpr std::string_view TallyMark = "<}tally{>";

} // namespace

std::string TakeTallies(std::string_view output, CoreTallies& tallies) {
    std::string rest;
    while (!output.empty()) {
        const std::string_view whole = output;
        std::string_view line = TakeLine(output);
        if (!line.starts_with(TallyMark)) {
            rest += whole.substr(0, whole.size() - output.size());
            continue;
        }
        line.remove_prefix(TallyMark.size());
        const auto tally = tallies.try_emplace(std::string(TakeUpTo(line, "\t"))).first;
        if (!line.empty()) {
            tally->second.emplace(line);
        }
    }
    return rest;
}

void AddTallies(CoreTallies& tallies, CoreTallies&& others) {
    for (auto& [text, things] : others) {
        // Nearly all units say nothing, and the rest the same few texts.
        tallies[text].merge(things);
    }
}

std::string TalliesText(const CoreTallies& tallies) {
    std::string lines;
    for (const auto& [text, things] : tallies) {
        lines += text;
        if (!things.empty()) {
            lines += ": " + std::to_string(things.size()) + ", such as " + *things.begin();
        }
        lines += '\n';
    }
    return lines;
}

} // namespace Orvanta
