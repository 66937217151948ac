#include "analysis/RunForecast.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace Orvanta {

namespace {

// A unit that takes less is never worth an order of its own; nor is the difference between such two a fact.
constexpr float ShortestLong = 0.1F;
constexpr float ShareOfLong = 0.01F;

// A unit that has outlived what was expected of it goes on for that part of its age: nothing better is known.
constexpr double PartOfAge = 0.25;

double SecondsBetween(RunForecast::Clock::time_point begin, RunForecast::Clock::time_point end) {
    return std::chrono::duration<double>(end - begin).count();
}

} // namespace

std::vector<std::size_t> LongestFirst(std::span<const UnitExpectation> expectations, unsigned workers) {
    float sum = 0;
    for (const UnitExpectation& unit : expectations) {
        sum += unit.seconds.value_or(0);
    }
    const float longest = std::max(ShortestLong, sum / static_cast<float>(std::max(workers, 1U)) * ShareOfLong);
    const auto isLong = [&](std::size_t unit) {
        return expectations[unit].seconds.value_or(0) >= longest;
    };
    std::vector<std::size_t> order(expectations.size());
    for (std::size_t unit = 0; unit < order.size(); ++unit) {
        order[unit] = unit;
    }
    const auto rest = std::stable_partition(order.begin(), order.end(), isLong);
    std::stable_sort(order.begin(), rest, [&](std::size_t left, std::size_t right) {
        return *expectations[left].seconds > *expectations[right].seconds;
    });
    return order;
}

RunForecast::RunForecast(std::vector<UnitExpectation> expectations, const std::vector<bool>& isToRun, unsigned workers)
    : expectations_(std::move(expectations)), workers_(std::max(workers, 1U)) {
    double known = 0;
    for (std::size_t unit = 0; unit < expectations_.size(); ++unit) {
        if (isToRun[unit]) {
            ++total_;
            known += expectations_[unit].seconds ? 1 : 0;
            Count(expectations_[unit], 1);
        }
    }
    meanKnown_ = known > 0 ? knownWaiting_ / known : 0;
}

void RunForecast::Count(const UnitExpectation& unit, double sign) {
    if (unit.seconds) {
        knownWaiting_ += sign * static_cast<double>(*unit.seconds);
    } else {
        newWaiting_ += sign;
        newSizeWaiting_ += sign * static_cast<double>(unit.bytes);
    }
}

void RunForecast::Begin(std::size_t unit, Clock::time_point now) {
    running_.push_back({unit, now});
    Count(expectations_[unit], -1);
}

void RunForecast::End(std::size_t unit, Ending ending, Clock::time_point now) {
    const auto place = std::find_if(running_.begin(), running_.end(),
                                    [unit](const RunningUnit& running) { return running.unit == unit; });
    if (place == running_.end()) {
        return;
    }
    const double taken = SecondsBetween(place->begin, now);
    running_.erase(place);
    ++finished_;
    if (ending == Ending::BrokenOff) {
        return;
    }
    const UnitExpectation& expectation = expectations_[unit];
    if (expectation.seconds) {
        knownExpected_ += static_cast<double>(*expectation.seconds);
        knownTaken_ += taken;
    } else {
        const auto size = static_cast<double>(expectation.bytes);
        newEnded_.count += 1;
        newEnded_.size += size;
        newEnded_.seconds += taken;
        newEnded_.squaredSize += size * size;
        newEnded_.product += size * taken;
    }
}

double RunForecast::Slowness() const {
    // As if two units had taken what they took before: a single one says little.
    const double prior = 2 * meanKnown_;
    return knownExpected_ + prior > 0 ? (knownTaken_ + prior) / (knownExpected_ + prior) : 1;
}

std::optional<RunForecast::Line> RunForecast::LineOfNewUnits() const {
    constexpr double FewestForLine = 8;
    const Sums& sums = newEnded_;
    if (sums.count == 0) {
        return meanKnown_ > 0 ? std::optional(Line{meanKnown_ * Slowness(), 0}) : std::nullopt;
    }
    const double mean = sums.seconds / sums.count;
    const double variance = sums.squaredSize - sums.size * sums.size / sums.count;
    const double covariance = sums.product - sums.size * sums.seconds / sums.count;
    if (sums.count < FewestForLine || variance <= 0 || covariance <= 0) {
        return Line{mean, 0}; // a larger unit that takes less tells that size tells nothing
    }
    // Not below nothing at size 0, which a steep line would say.
    const double steepest = sums.seconds / sums.size;
    const double perByte = std::min(covariance / variance, steepest);
    return Line{mean - perByte * sums.size / sums.count, perByte};
}

double RunForecast::Expected(std::size_t unit, double slowness, const Line& line) const {
    const UnitExpectation& expectation = expectations_[unit];
    return expectation.seconds ? static_cast<double>(*expectation.seconds) * slowness
                               : line.constant + line.perByte * static_cast<double>(expectation.bytes);
}

std::optional<std::chrono::seconds> RunForecast::TimeLeft(Clock::time_point now) const {
    const std::optional<Line> ofNew = LineOfNewUnits();
    if (!ofNew && meanKnown_ <= 0) {
        return std::nullopt;
    }
    const double slowness = Slowness();
    const Line line = ofNew.value_or(Line());
    const double waiting = knownWaiting_ * slowness + newWaiting_ * line.constant + newSizeWaiting_ * line.perByte;
    double work = std::max(waiting, 0.0);
    double longest = 0;
    for (const RunningUnit& running : running_) {
        const double age = SecondsBetween(running.begin, now);
        const double left = std::max(Expected(running.unit, slowness, line) - age, age * PartOfAge);
        work += left;
        longest = std::max(longest, left);
    }
    return std::chrono::seconds(std::llround(std::max(work / workers_, longest)));
}

} // namespace Orvanta
