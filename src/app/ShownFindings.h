#pragma once

#include "render/FindingGate.h"
#include "report/IOutput.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace Orvanta {

/// Watches the findings that a run reports: keeps the worst of them for its end, and asks a gate. What is marked as a
/// false alarm, and what is no finding, is not looked at. Memory does not grow with the findings.
class ShownFindings : public OrvlogConverter::IOutput {
public:
    enum class Colours { No, Yes };

    /// Keeps the `most` worst ones.
    ShownFindings(std::size_t most, std::optional<OrvlogConverter::FindingGate> gate) : most_(most), gate_(gate) {}

    /// Always true.
    bool Write(const OrvlogConverter::ReportMessage& message) override;

    /// The worst findings, one a line, the worst first and equal ones in the order of the report, with paths from the
    /// current folder; then how many more there are. Empty without findings, and when none are to be kept.
    [[nodiscard]] std::string Text(Colours colours) const;

    [[nodiscard]] std::size_t GateMatches() const noexcept { return gateMatches_; }

private:
    struct Kept {
        std::string file;
        std::uint32_t line;
        std::string text;
    };

    std::size_t most_;
    std::optional<OrvlogConverter::FindingGate> gate_;
    std::multimap<std::size_t, Kept> worst_; // by how bad they are: equal ones stand in the order of their addition
    std::size_t count_ = 0;
    std::size_t gateMatches_ = 0;
};

} // namespace Orvanta
