#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

/// The group of diagnostics that a code belongs to.
enum class AnalyzerType : std::uint8_t {
    Fail = 0,
    GeneralAnalysis = 1,
    Bits64 = 2,
    Optimization = 3,
    CustomerSpecific = 4,
    Misra = 5,
    Owasp = 6,
    Autosar = 7,
    Unknown = 8,
};

/// The number of a code: the digits behind the "V" that it begins with, when nothing else follows; 0 for any other
/// code.
[[nodiscard]] std::uint32_t CodeNumber(std::string_view code) noexcept;

/// The group of a code, by its number; `Unknown` for what is no code of ours, such as those of other tools.
[[nodiscard]] AnalyzerType ClassifyCode(std::string_view code) noexcept;

/// One analyzer that passes, with its levels; no level means all of them.
struct AnalyzerLevels {
    AnalyzerType analyzer = AnalyzerType::Unknown;
    std::vector<int> levels = {};

    bool operator==(const AnalyzerLevels&) const = default;
};

/// Parses a list of analyzers and levels such as "GA:1,2;64:1", in which "+" may stand for ";". "all" gives an empty
/// list: no restriction. Levels outside 1 to 3 are taken as they are.
/// \throws ConfigException "Wrong analyzer name: " or "Wrong analyzers format: "
[[nodiscard]] std::vector<AnalyzerLevels> ParseAnalyzerSpecification(std::string_view text);

/// Which levels of which analyzers pass.
class LevelTable {
public:
    /// An empty list lets everything pass.
    explicit LevelTable(const std::vector<AnalyzerLevels>& analyzers = {});

    /// Messages without a level of 1 to 3, and those of no known analyzer, always pass.
    [[nodiscard]] bool Passes(std::string_view code, std::uint32_t level) const noexcept;

private:
    // All but `Unknown`, which has no entry: its messages always pass.
    static constexpr std::size_t Analyzers = 8;
    static constexpr std::size_t Levels = 3;
    std::array<bool, Analyzers * Levels> passes_;
};

} // namespace OrvlogConverter
