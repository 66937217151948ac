#pragma once

#include "analysis/RunOutcome.h"
#include "analysis/ToldInput.h"

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Orvanta {

/// What became of the compiler invocations of the input: each is counted once, so the counts add up to the input.
struct InvocationCounts {
    std::size_t analyzed = 0;
    std::size_t carriedOver = 0;
    std::size_t failed = 0;
    std::size_t excluded = 0;
    std::size_t skipped = 0;
    std::size_t stopped = 0;

    /// How many invocations the input had.
    [[nodiscard]] std::size_t Total() const noexcept {
        return analyzed + carriedOver + failed + excluded + skipped + stopped;
    }
};

/// Whether an invocation with this fate is a compilation that could not be read, not one that need not be.
[[nodiscard]] bool IsFailure(InvocationFate fate) noexcept;

/// Counts invocations; one that compiles several sources counts by its worst unit.
[[nodiscard]] InvocationCounts CountInvocations(const ToldInput& input, const RunOutcome& outcome);

/// A time as "H:MM:SS.T".
[[nodiscard]] std::string ElapsedText(std::chrono::milliseconds elapsed);

/// The lines that end a run: what it did (`done`) and in what time, what became of the invocations, the findings, and
/// where the report is
/// (`reportPath`, empty for standard output).
[[nodiscard]] std::string SummaryText(std::string_view done, const ToldInput& input, const RunOutcome& outcome,
                                      std::chrono::milliseconds elapsed, const std::string& reportPath);

/// The line that says how many units import modules, and names the first; empty when none does.
[[nodiscard]] std::string ModulesText(const ToldInput& input, const RunOutcome& outcome);

/// How a list of failures tells of many with one reason.
enum class FailureForm {
    Grouped, ///< once, with how many there are and the first few
    Whole,   ///< each by its name
};

/// The lines that name the failed units and invocations with their reasons; empty when there is none.
[[nodiscard]] std::string FailureList(const ToldInput& input, const RunOutcome& outcome, FailureForm form);

} // namespace Orvanta
