#include "history/KnownUnits.h"

#include "platform/Fingerprint.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <unordered_map>

namespace Orvanta {

namespace {

// Units are mostly asked for in their order, in which they were written.
void FindNamesakes(std::span<const UnitIdentity> identities, std::vector<KnownUnit>& units,
                   std::vector<KnownUnit>& known) {
    // Numbers of known units begin with 1.
    constexpr std::size_t Taken = 0; // of namesake
    std::unordered_multimap<std::uint64_t, std::size_t> places;
    const auto find = [&](std::size_t unit, bool hasSameArguments) {
        // Made when the order fails for the first time, and never in a build that has not changed.
        if (places.empty()) {
            for (std::size_t place = 0; place < known.size(); ++place) {
                places.emplace(known[place].source.low, place);
            }
        }
        std::size_t best = known.size();
        const auto [first, last] = places.equal_range(units[unit].source.low);
        for (auto place = first; place != last; ++place) {
            const KnownUnit& row = known[place->second];
            if (row.namesake != Taken && row.source == units[unit].source &&
                (!hasSameArguments || row.arguments == identities[unit].arguments)) {
                // The first in the file: the order within the map says nothing.
                best = std::min(best, place->second);
            }
        }
        return best;
    };
    const auto take = [](KnownUnit& row) {
        const KnownUnit taken = row;
        row.namesake = Taken;
        return taken;
    };
    std::vector<std::size_t> missed;
    std::size_t next = 0;
    for (std::size_t unit = 0; unit < identities.size(); ++unit) {
        units[unit].source = FingerprintOf(identities[unit].id);
        const bool isNext = next < known.size() && known[next].namesake != Taken &&
                            known[next].source == units[unit].source &&
                            known[next].arguments == identities[unit].arguments;
        const std::size_t place = isNext ? next : known.empty() ? known.size() : find(unit, true);
        if (place == known.size()) {
            // In a second pass: those with equal arguments come first, so that none is taken away from its own unit.
            missed.push_back(unit);
            units[unit].namesake = Taken;
            continue;
        }
        units[unit] = take(known[place]);
        next = place + 1;
    }
    for (const std::size_t unit : missed) {
        if (const std::size_t place = known.empty() ? known.size() : find(unit, false); place != known.size()) {
            units[unit] = take(known[place]);
        }
    }
    std::copy_if(known.begin(), known.end(), std::back_inserter(units),
                 [](const KnownUnit& row) { return row.namesake != Taken; });
}

/// Gives each unit without a number one.
void NumberNewUnits(std::vector<KnownUnit>& units) {
    const auto isNew = [](const KnownUnit& row) {
        return row.namesake == 0;
    };
    if (std::none_of(units.begin(), units.end(), isNew)) {
        return;
    }
    // Two sources with one hash share their numbers, which then have gaps: that does no harm.
    std::unordered_map<std::uint64_t, std::uint32_t> greatest;
    for (const KnownUnit& row : units) {
        std::uint32_t& namesake = greatest[row.source.low];
        namesake = std::max(namesake, row.namesake);
    }
    for (KnownUnit& row : units) {
        if (isNew(row)) {
            row.namesake = ++greatest[row.source.low];
        }
    }
}

} // namespace

std::vector<KnownUnit> MatchUnits(std::span<const UnitIdentity> identities, std::vector<KnownUnit> known) {
    std::vector<KnownUnit> units(identities.size());
    FindNamesakes(identities, units, known);
    NumberNewUnits(units);
    return units;
}

} // namespace Orvanta
