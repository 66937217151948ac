#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

struct ReportMessage;

/// Whose numbers a guideline goes by. Later editions for C add to the numbers of earlier ones; those for C++ count
/// anew.
enum class MisraStandard : std::uint8_t {
    C,
    Cpp2008,
    Cpp2023,
    Other, ///< known by the diagnostic's code alone
};

/// One guideline, such as rule 8.13 of MISRA C. Sorted by standard, then as its numbers count.
struct MisraGuideline {
    MisraStandard standard = MisraStandard::Other;
    bool isRule = true;                        ///< false for a directive
    std::array<std::uint32_t, 3> numbers = {}; ///< unused ones are 0

    bool operator==(const MisraGuideline&) const = default;
    [[nodiscard]] bool operator<(const MisraGuideline& other) const noexcept;

    /// How reports name it: "MISRA-C-8.13", "MISRA-C-DIR-4.1", "MISRA-CPP-5-0-1", "MISRA-CPP-2023-6.4.1", "V2501".
    [[nodiscard]] std::string Name() const;
};

/// Reads a guideline's name in any usual spelling: those of `Name`, "MISRA C:2012 Rule 8.13", "misra-c2012-17.7",
/// "Dir 4.6", "D4.6" and their like. An edition is read, and tells nothing but whose numbers they are. Nothing for any
/// other text, bare numbers included: they could mean anything.
[[nodiscard]] std::optional<MisraGuideline> ParseMisraGuideline(std::string_view name);

/// What the identifiers of a message say of MISRA.
struct MisraNames {
    std::vector<MisraGuideline> guidelines; ///< each once
    std::vector<std::string> unreadable;    ///< identifiers that speak of MISRA and name no guideline
};

/// The guidelines that a message is about: those that its identifiers name, else its code when that is a MISRA one.
[[nodiscard]] MisraNames MisraNamesOf(const ReportMessage& message);

} // namespace OrvlogConverter
