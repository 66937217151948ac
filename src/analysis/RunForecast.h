#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// How long a pass over units will take, and in which order it takes least.
//
// A unit that ran before takes what it took then, times how this run compares with that one so far: another load of the
// machine, or another number of workers, makes all units slower or faster alike. A new unit takes what new units have
// taken in this run by their size: a line through what is known, as every unit has a part that doesn't depend on it.

namespace Orvanta {

/// What is known of a unit before it runs.
struct UnitExpectation {
    std::optional<float> seconds = {}; ///< what it took in an earlier run
    float bytes = 0;                   ///< else its size: of one kind for all units of a pass
    std::uint64_t peakMemory = 0;      ///< that it took in that run, in bytes
};

/// The order in which units are to begin, so that none that is long begins when the others are nearly done: those of a
/// weight first, the longest of them in front, and then the rest as they stand. What is not known stands where it is.
///
/// The rest stays in input order because the report grows in that order, and what is short can't keep the run from its
/// end: only what takes more than a hundredth of what each worker has to do counts as long.
[[nodiscard]] std::vector<std::size_t> LongestFirst(std::span<const UnitExpectation> expectations, unsigned workers);

/// Foresees the end of a pass. One thread at a time uses an object.
class RunForecast {
public:
    using Clock = std::chrono::steady_clock;

    /// A unit that a worker has taken up.
    struct RunningUnit {
        std::size_t unit = 0;
        Clock::time_point begin;
    };

    /// `isToRun` tells by unit which take part.
    RunForecast(std::vector<UnitExpectation> expectations, const std::vector<bool>& isToRun, unsigned workers);

    /// A worker takes the unit up.
    void Begin(std::size_t unit, Clock::time_point now);

    /// It has done with it. A unit that was broken off tells nothing of how long units take.
    enum class Ending { Whole, BrokenOff };
    void End(std::size_t unit, Ending ending, Clock::time_point now);

    /// How long the pass will go on; absent while there is nothing to tell it from.
    [[nodiscard]] std::optional<std::chrono::seconds> TimeLeft(Clock::time_point now) const;

    /// Those that run now, in the order in which they began.
    [[nodiscard]] const std::vector<RunningUnit>& Running() const noexcept { return running_; }

    /// How many units take part, and how many of them have ended.
    [[nodiscard]] std::size_t Total() const noexcept { return total_; }

    [[nodiscard]] std::size_t Finished() const noexcept { return finished_; }

private:
    // What a unit of the size takes is `constant + perByte * size` seconds.
    struct Line {
        double constant = 0;
        double perByte = 0;
    };

    // Of units that have ended.
    struct Sums {
        double count = 0;
        double size = 0;
        double seconds = 0;
        double squaredSize = 0;
        double product = 0;
    };

    // How much slower this run is than the earlier one.
    [[nodiscard]] double Slowness() const;
    // Absent as long as no unit tells it.
    [[nodiscard]] std::optional<Line> LineOfNewUnits() const;
    [[nodiscard]] double Expected(std::size_t unit, double slowness, const Line& line) const;
    // Counts a unit among those that wait, or with -1 no longer.
    void Count(const UnitExpectation& unit, double sign);

    std::vector<UnitExpectation> expectations_;
    std::vector<RunningUnit> running_;
    unsigned workers_;
    std::size_t total_ = 0;
    std::size_t finished_ = 0;
    double meanKnown_ = 0;    // of all units of which it is known
    double knownWaiting_ = 0; // seconds of those that have not begun
    double newWaiting_ = 0;   // how many others have not begun
    double newSizeWaiting_ = 0;
    double knownExpected_ = 0; // of those that have ended: what was expected, and what they took
    double knownTaken_ = 0;
    Sums newEnded_;
};

} // namespace Orvanta
