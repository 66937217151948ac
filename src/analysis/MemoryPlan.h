#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>

namespace Orvanta {

/// What is known of the memory that a unit needs, before it runs.
struct MemoryNeed {
    std::uint64_t peak = 0; ///< that it took in an earlier run; 0: it is not known
    std::uint64_t size = 0; ///< of its source or its text, of one kind for all units of a pass; 0: it is not known
};

/// Decides which unit may start beside those that run. It starts no process and knows no clock: it is told what begins
/// and what ends.
///
/// A unit fits when the peaks that are expected of it and of those that run come to no more than there is. Of those
/// that wait the first that fits begins, so that a large one doesn't keep a worker idle; when enough have passed it,
/// none does any more. When nothing runs, the first may begin whatever it needs: no unit waits for ever.
///
/// A unit that ran before is expected to need what it did. Of new ones a line through what others have needed by their
/// size tells the mean, and the spread around it how much to add: for all that run together, since not all of them are
/// large at once. To be wrong costs a unit a second run, alone; to be too careful costs wherever memory is short.
class MemoryPlan {
public:
    /// 0: there is no limit.
    explicit MemoryPlan(std::uint64_t budget) : budget_(budget) {}

    /// The unit waits, behind all others.
    void Add(std::size_t unit, const MemoryNeed& need);

    /// The unit that begins now; absent when none may.
    [[nodiscard]] std::optional<std::size_t> Begin();

    /// The first that waits begins, whatever it needs; absent when none waits.
    [[nodiscard]] std::optional<std::size_t> BeginFirst();

    /// The unit has ended and took so much; 0 when that is not known.
    void End(std::size_t unit, std::uint64_t peak);

    /// A unit that has ended is to run again with nothing beside it. Nothing else begins until it has done so.
    void AddAlone(std::size_t unit) { alone_.push_back(unit); }

    /// Whether it may now; then it runs.
    [[nodiscard]] bool BeginAlone(std::size_t unit);

    /// Whether others ran beside a unit that runs, at any time.
    [[nodiscard]] bool HadCompany(std::size_t unit) const { return running_.at(unit).hadCompany; }

private:
    struct Waiting {
        std::size_t unit = 0;
        MemoryNeed need;
        unsigned passed = 0; // by how many others
    };

    // How much a unit may need: its variance is that of what is not known.
    struct Expectation {
        double bytes = 0;
        double variance = 0;
    };

    struct Running {
        Expectation expected;
        std::uint64_t size = 0;
        bool hadCompany = false;
    };

    // Of units that have ended; in bytes.
    struct Sums {
        double count = 0;
        double size = 0;
        double peak = 0;
        double squaredSize = 0;
        double squaredPeak = 0;
        double product = 0;
    };

    [[nodiscard]] Expectation Expect(const MemoryNeed& need) const;
    // Whether what is expected fits beside what runs.
    [[nodiscard]] bool Fits(const Expectation& expected) const;
    std::size_t Start(std::size_t place);
    void Run(std::size_t unit, const Running& running);

    std::uint64_t budget_;
    std::deque<Waiting> waiting_;
    std::deque<std::size_t> alone_;
    std::map<std::size_t, Running> running_;
    Sums ended_; // of which the peak is known
};

} // namespace Orvanta
