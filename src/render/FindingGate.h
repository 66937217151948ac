#pragma once

#include "report/AnalyzerType.h"
#include "report/IOutput.h"

#include <cstddef>
#include <string_view>

namespace OrvlogConverter {

/// The exit code of a run that a gate has stopped.
inline constexpr int GateExitCode = 2;

/// Decides which findings stop a build: "all", or analyzers and levels such as "GA:1;64". A unit that could not be
/// analyzed and codes of no analyzer match "all" only; what is no finding matches nothing.
class FindingGate {
public:
    /// Reads "all", or analyzers with their levels.
    /// \throws ConfigException
    explicit FindingGate(std::string_view specification);

    /// Whether the message stops the build. Of the message, only its code and its level count.
    [[nodiscard]] bool Matches(const ReportMessage& message) const noexcept;

private:
    bool takesAll_ = false;
    LevelTable levels_;
};

/// Counts the messages that a gate matches; takes none.
class GateOutput : public IOutput {
public:
    /// Has a copy of the gate of its own.
    explicit GateOutput(const FindingGate& gate) : gate_(gate) {}

    /// Always false, so that a gate among the outputs does not make a message count as written.
    bool Write(const ReportMessage& message) override {
        count_ += gate_.Matches(message) ? 1U : 0U;
        return false;
    }

    /// The messages that matched so far.
    [[nodiscard]] std::size_t Count() const noexcept { return count_; }

private:
    FindingGate gate_;
    std::size_t count_ = 0;
};

} // namespace OrvlogConverter
