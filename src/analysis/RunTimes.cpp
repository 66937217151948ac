#include "analysis/RunTimes.h"

#include "analysis/RunSummary.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace Orvanta {

namespace {

constexpr std::size_t MostShown = 5;

std::chrono::milliseconds Milliseconds(std::chrono::microseconds time) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(time);
}

// The longest of them first; equal ones stand in the order of the input.
std::vector<std::size_t> Slowest(std::span<const UnitCost> costs) {
    std::vector<std::size_t> places(costs.size());
    for (std::size_t unit = 0; unit < places.size(); ++unit) {
        places[unit] = unit;
    }
    const auto end = places.begin() + static_cast<std::ptrdiff_t>(std::min(MostShown, places.size()));
    std::partial_sort(places.begin(), end, places.end(), [&costs](std::size_t left, std::size_t right) {
        return costs[left].Wall() != costs[right].Wall() ? costs[left].Wall() > costs[right].Wall() : left < right;
    });
    places.erase(end, places.end());
    return places;
}

} // namespace

std::string TimesText(const ToldInput& input, std::span<const UnitCost> costs) {
    UnitCost all;
    for (const UnitCost& cost : costs) {
        all += cost;
    }
    if (all.Wall().count() == 0) {
        return {};
    }
    constexpr int AllPercents = 100;
    const auto compiler = (all.compiler.wall.count() * AllPercents + all.Wall().count() / 2) / all.Wall().count();
    std::string text = "Time of all files: " + ElapsedText(Milliseconds(all.Wall())) + ", of which the compiler took " +
                       std::to_string(compiler) + " % and the core " + std::to_string(AllPercents - compiler) + " %\n";
    text += "Slowest files:\n";
    for (const std::size_t unit : Slowest(costs)) {
        if (costs[unit].Wall().count() > 0) {
            text += "  " + ElapsedText(Milliseconds(costs[unit].Wall())) + "  " + input.SourceOf(unit) + "\n";
        }
    }
    return text;
}

} // namespace Orvanta
