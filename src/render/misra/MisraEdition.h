#pragma once

#include "render/misra/MisraGuideline.h"

#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace OrvlogConverter {

/// How binding a MISRA guideline is. What is more binding stands first.
enum class MisraCategory : std::uint8_t {
    Mandatory,
    Required,
    Document, ///< of MISRA C++:2008: what is done must be documented. Counts as Required
    Advisory,
    Disapplied,
    Unknown, ///< the standard has no such guideline
};

/// The category's word, as the table and users write it. Lasts for ever.
[[nodiscard]] std::string_view NameOf(MisraCategory category) noexcept;

/// One published list of guidelines. They all stand in guidelines.csv; the program holds that table.
struct MisraEdition {
    std::string_view name; ///< such as "MISRA C:2023"
    MisraStandard standard = MisraStandard::C;
    std::map<MisraGuideline, MisraCategory> categories;

    /// The name without "MISRA", by which users ask for it: "C:2023".
    [[nodiscard]] std::string_view ShortName() const noexcept;

    /// Unknown for a guideline that the edition does not list.
    [[nodiscard]] MisraCategory CategoryOf(const MisraGuideline& guideline) const;
};

/// All editions, in the order of the table.
/// Any thread may ask.
[[nodiscard]] std::span<const MisraEdition> AllMisraEditions();

/// The edition of that name, which may leave out "MISRA". \throws ConfigException for any other name, with all of them
[[nodiscard]] const MisraEdition& MisraEditionNamed(std::string_view name);

/// The editions by which guidelines are judged: one for each standard.
class MisraEditions {
public:
    /// For MISRA C that of 2023, whose numbers include those of 2012; for MISRA C++ those that the names tell.
    MisraEditions();

    /// Takes this one for its standard, whose guidelines are listed from now on.
    void Choose(const MisraEdition& edition);

    /// What was chosen.
    [[nodiscard]] const std::set<MisraStandard>& Chosen() const noexcept { return chosen_; }

    /// The edition taken for a standard.
    /// Null for MisraStandard::Other.
    [[nodiscard]] const MisraEdition* Of(MisraStandard standard) const;

    /// By the edition that is taken for its standard; Unknown when that lists no such guideline.
    [[nodiscard]] MisraCategory CategoryOf(const MisraGuideline& guideline) const;

private:
    std::map<MisraStandard, const MisraEdition*> editions_;
    std::set<MisraStandard> chosen_;
};

} // namespace OrvlogConverter
