#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

struct ReportMessage;

/// How binding a MISRA guideline is.
enum class MisraCategory : std::uint8_t {
    Mandatory,
    Required,
    Advisory,
    Disapplied,
    Unknown, ///< the guideline's number is in no list of ours
};

/// The category's word in a compliance report and in a plan.
[[nodiscard]] std::string_view NameOf(MisraCategory category) noexcept;

/// The standard that a guideline is of.
enum class MisraStandard : std::uint8_t {
    C,     ///< MISRA C:2012
    Cpp,   ///< MISRA C++:2008
    Other, ///< known by the diagnostic's code alone
};

/// One guideline, such as rule 8.13 of MISRA C. Sorted by standard, then as its numbers count.
struct MisraGuideline {
    MisraStandard standard = MisraStandard::Other;
    bool isRule = true;                        ///< false for a directive, of which MISRA C has some
    std::array<std::uint32_t, 3> numbers = {}; ///< unused ones are 0

    bool operator==(const MisraGuideline&) const = default;
    [[nodiscard]] bool operator<(const MisraGuideline& other) const noexcept;

    /// How reports name it: "MISRA-C-8.13", "MISRA-C-DIR-4.1", "MISRA-CPP-5-0-1", "V2501".
    [[nodiscard]] std::string Name() const;
    /// The category that the standard gives it.
    [[nodiscard]] MisraCategory Category() const noexcept;
};

/// Reads a guideline's name. Nothing for any other text.
[[nodiscard]] std::optional<MisraGuideline> ParseMisraGuideline(std::string_view name);

/// The guidelines that a message is about: those that its identifiers name, else its code when that is a MISRA one.
[[nodiscard]] std::vector<MisraGuideline> MisraGuidelinesOf(const ReportMessage& message);

/// Categories that a project has agreed on, in the place of the standard's.
using MisraCategoryPlan = std::map<MisraGuideline, MisraCategory>;

/// Reads a plan: lines "GUIDELINE = CATEGORY", empty ones, and comments behind "#". A plan may only make a guideline
/// more binding, or disapply an advisory one. \throws ConfigException: the path, the line and what is wrong with it;
/// FilesystemException
[[nodiscard]] MisraCategoryPlan ReadMisraCategoryPlan(const std::string& path);

} // namespace OrvlogConverter
