#include "analysis/RunForecast.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

namespace Orvanta {
namespace {

using Order = std::vector<std::size_t>;
using Clock = RunForecast::Clock;
using Expectations = std::vector<UnitExpectation>;

Clock::time_point At(double second) {
    return Clock::time_point(std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(second)));
}

/// Units on so many workers, by a clock of their own. What a unit takes is decided before.
class Simulation {
public:
    Simulation(std::vector<double> seconds, unsigned workers) : seconds_(std::move(seconds)), free_(workers, 0.0) {}

    // Goes through them in this order, and returns when the last has ended. Asks the forecast at `questionAt`.
    double Run(const Order& order, RunForecast* forecast = nullptr, double questionAt = 0) {
        std::vector<std::pair<double, std::size_t>> ends; // of running units, the next one last
        double end = 0;
        const auto finish = [&](double until) {
            std::sort(ends.begin(), ends.end(), std::greater<>());
            for (; !ends.empty() && ends.back().first <= until; ends.pop_back()) {
                Ask(forecast, questionAt, ends.back().first);
                if (forecast != nullptr) {
                    forecast->End(ends.back().second, RunForecast::Ending::Whole, At(ends.back().first));
                }
            }
            Ask(forecast, questionAt, until);
        };
        for (const std::size_t unit : order) {
            const auto worker = std::min_element(free_.begin(), free_.end());
            finish(*worker);
            if (forecast != nullptr) {
                forecast->Begin(unit, At(*worker));
            }
            *worker += seconds_[unit];
            ends.emplace_back(*worker, unit);
            end = std::max(end, *worker);
        }
        finish(end);
        return end;
    }

    [[nodiscard]] double Answer() const { return answer_; }

private:
    // Once, at the last event before the question's time has passed.
    void Ask(const RunForecast* forecast, double questionAt, double now) {
        if (forecast != nullptr && std::isnan(answer_) && now > questionAt) {
            const auto left = forecast->TimeLeft(At(questionAt));
            answer_ = left ? static_cast<double>(left->count()) : 0;
        }
    }

    std::vector<double> seconds_;
    std::vector<double> free_; // by worker: since when
    double answer_ = std::nan("");
};

Order InputOrder(std::size_t units) {
    Order order(units);
    std::iota(order.begin(), order.end(), 0);
    return order;
}

// As of a large project: most units are short, few are very long.
std::vector<double> SkewedSeconds(std::size_t units, std::mt19937& random) {
    std::lognormal_distribution<double> seconds(0.5, 1.2);
    std::vector<double> all(units);
    std::generate(all.begin(), all.end(), [&] { return seconds(random); });
    return all;
}

Expectations Known(const std::vector<double>& seconds, double factor = 1) {
    Expectations units;
    for (const double unit : seconds) {
        units.push_back({.seconds = static_cast<float>(unit * factor)});
    }
    return units;
}

TEST(LongestFirst, PutsWhatIsLongInFrontAndLeavesTheRest) {
    const Expectations units = {{0.01F}, {5}, {}, {7}, {0.02F}, {7}, {0.001F}};
    EXPECT_EQ(LongestFirst(units, 2), (Order{3, 5, 1, 0, 2, 4, 6}));
    EXPECT_EQ(LongestFirst(Expectations(3), 2), InputOrder(3)) << "nothing is known";
    EXPECT_EQ(LongestFirst(Expectations{{0.02F}, {0.03F}}, 2), InputOrder(2)) << "nothing is long";
    EXPECT_TRUE(LongestFirst({}, 2).empty());
}

TEST(LongestFirst, EndsWithinATenthOfTheLowerBound) {
    std::mt19937 random(14);
    double worst = 0;
    for (const unsigned workers : {2U, 8U, 64U}) {
        for (const std::size_t units : {200U, 1000U, 5000U}) {
            std::vector<double> seconds = SkewedSeconds(units, random);
            seconds.back() = std::accumulate(seconds.begin(), seconds.end(), 0.0) / workers; // the longest comes last
            const double sum = std::accumulate(seconds.begin(), seconds.end(), 0.0);
            const double bound = std::max(sum / workers, *std::max_element(seconds.begin(), seconds.end()));
            const double end = Simulation(seconds, workers).Run(LongestFirst(Known(seconds), workers));
            EXPECT_LE(end, 1.1 * bound) << units << " units, " << workers << " workers";
            worst = std::max(worst, Simulation(seconds, workers).Run(InputOrder(units)) / bound);
        }
    }
    EXPECT_GT(worst, 1.3) << "in input order: it is the other one that helps";
}

struct ErrorCase {
    const char* name;
    double slowness; // of this run
    bool isKnown;
    double mostError;
};

constexpr ErrorCase ErrorCases[] = {
    {"before", 1, true, 0.2}, {"on a slower machine", 3, true, 0.2}, {"never", 1, false, 0.4}};

TEST(Forecast, IsRightAtHalfOfTheRun) {
    std::mt19937 random(14);
    std::normal_distribution<double> noise(1, 0.15);
    for (const ErrorCase& row : ErrorCases) {
        const unsigned workers = 4;
        std::vector<double> seconds;
        Expectations units;
        for (const double usual : SkewedSeconds(800, random)) {
            seconds.push_back(usual * row.slowness * std::max(noise(random), 0.1));
            // A source's size tells little of its text's.
            units.push_back(row.isKnown ? UnitExpectation{.seconds = static_cast<float>(usual)}
                                        : UnitExpectation{.bytes = static_cast<float>(1000 + 500 * std::sqrt(usual))});
        }
        const Order order = LongestFirst(units, workers);
        const double end = Simulation(seconds, workers).Run(order);
        RunForecast forecast(units, std::vector<bool>(units.size(), true), workers);
        Simulation run(seconds, workers);
        run.Run(order, &forecast, end / 2);
        EXPECT_NEAR(run.Answer(), end / 2, row.mostError * end / 2) << "analyzed " << row.name;
        EXPECT_EQ(forecast.Finished(), forecast.Total());
        EXPECT_EQ(forecast.TimeLeft(At(end))->count(), 0) << "nothing is left over from sums";
    }
}

TEST(Forecast, SaysNothingUntilThereIsSomethingToTellItFrom) {
    RunForecast forecast(Expectations(4), {true, false, true, true}, 1);
    EXPECT_EQ(forecast.Total(), 3U);
    forecast.Begin(0, At(0));
    EXPECT_EQ(forecast.TimeLeft(At(1)), std::nullopt);
    forecast.End(0, RunForecast::Ending::BrokenOff, At(2));
    forecast.Begin(2, At(2));
    EXPECT_EQ(forecast.TimeLeft(At(2)), std::nullopt) << "what was broken off tells nothing";
    forecast.End(2, RunForecast::Ending::Whole, At(12));
    forecast.Begin(3, At(12));
    EXPECT_EQ(forecast.TimeLeft(At(16))->count(), 6);
    EXPECT_EQ(forecast.TimeLeft(At(52))->count(), 10) << "a unit that goes on and on is expected to";
}

} // namespace
} // namespace Orvanta
