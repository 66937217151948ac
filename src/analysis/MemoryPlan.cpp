#include "analysis/MemoryPlan.h"

#include <algorithm>
#include <cmath>

namespace Orvanta {

namespace {

// Before anything is known: of a large unit of C++. On most machines as many as there are processors fit.
constexpr double PeakAtStart = 1024.0 * 1024 * 1024;

constexpr unsigned MostThatPass = 32;

// How many times the spread of what runs is kept free beside the mean. The part of the memory that is never given out
// takes the rest.
constexpr double SpreadsToKeep = 0.75;

} // namespace

void MemoryPlan::Add(std::size_t unit, const MemoryNeed& need) {
    waiting_.push_back({unit, need, 0});
}

MemoryPlan::Expectation MemoryPlan::Expect(const MemoryNeed& need) const {
    if (need.peak > 0) {
        return {static_cast<double>(need.peak), 0};
    }
    const double count = ended_.count;
    if (count == 0) {
        return {PeakAtStart, 0};
    }
    const double mean = ended_.peak / count;
    const double sizes = ended_.squaredSize - ended_.size * ended_.size / count;
    const double both = ended_.product - ended_.size * ended_.peak / count;
    // Of units of one size, or of a few, nothing follows for another size.
    constexpr double FewestForSlope = 3;
    const double slope = count >= FewestForSlope && sizes > 0 ? std::max(0.0, both / sizes) : 0;
    const double bytes = std::max(mean / 4, mean + slope * (static_cast<double>(need.size) - ended_.size / count));
    const double around = ended_.squaredPeak - ended_.peak * mean - slope * both;
    // A few that are alike by chance don't tell how much others may differ.
    const double leastSpread = mean / (count + 1);
    return {bytes, std::max(around / count, leastSpread * leastSpread)};
}

bool MemoryPlan::Fits(const Expectation& expected) const {
    Expectation all = expected;
    for (const auto& [unit, running] : running_) {
        all.bytes += running.expected.bytes;
        all.variance += running.expected.variance;
    }
    return all.bytes + SpreadsToKeep * std::sqrt(all.variance) <= static_cast<double>(budget_);
}

std::optional<std::size_t> MemoryPlan::Begin() {
    if (waiting_.empty() || !alone_.empty()) {
        return std::nullopt;
    }
    if (budget_ == 0 || running_.empty()) {
        return Start(0);
    }
    for (std::size_t place = 0; place < waiting_.size(); ++place) {
        if (Fits(Expect(waiting_[place].need))) {
            return Start(place);
        }
        if (waiting_[place].passed >= MostThatPass) {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> MemoryPlan::BeginFirst() {
    return waiting_.empty() ? std::nullopt : std::optional(Start(0));
}

std::size_t MemoryPlan::Start(std::size_t place) {
    const Waiting chosen = waiting_[place];
    for (std::size_t passed = 0; passed < place; ++passed) {
        ++waiting_[passed].passed;
    }
    waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(place));
    Run(chosen.unit, {Expect(chosen.need), chosen.need.size, false});
    return chosen.unit;
}

void MemoryPlan::Run(std::size_t unit, const Running& running) {
    running_[unit] = running;
    if (running_.size() > 1) {
        for (auto& [other, state] : running_) {
            state.hadCompany = true;
        }
    }
}

void MemoryPlan::End(std::size_t unit, std::uint64_t peak) {
    const auto ended = running_.find(unit);
    if (peak > 0) {
        const auto size = static_cast<double>(ended->second.size);
        const auto bytes = static_cast<double>(peak);
        ended_.count += 1;
        ended_.size += size;
        ended_.peak += bytes;
        ended_.squaredSize += size * size;
        ended_.squaredPeak += bytes * bytes;
        ended_.product += size * bytes;
    }
    running_.erase(ended);
    if (!alone_.empty() && alone_.front() == unit) {
        alone_.pop_front();
    }
}

bool MemoryPlan::BeginAlone(std::size_t unit) {
    if (!running_.empty() || alone_.front() != unit) {
        return false;
    }
    // It stays in the list until it has ended, which keeps all others from beginning.
    Run(unit, {});
    return true;
}

} // namespace Orvanta
