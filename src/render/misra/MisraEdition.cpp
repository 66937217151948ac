#include "render/misra/MisraEdition.h"

#include "platform/Text.h"
#include "render/misra/MisraTable.h"
#include "report/Exceptions.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace OrvlogConverter {

namespace {

using Orvanta::EqualsIgnoringCase;

constexpr std::string_view Publisher = "MISRA ";
// Of several editions for one standard, one must be taken where the user names none.
constexpr std::string_view DefaultForC = "MISRA C:2023";

// In the order of the enumeration: NameOf takes the row by its place.
constexpr std::pair<MisraCategory, std::string_view> CategoryNames[] = {
    {MisraCategory::Mandatory, "Mandatory"},   {MisraCategory::Required, "Required"},
    {MisraCategory::Document, "Document"},     {MisraCategory::Advisory, "Advisory"},
    {MisraCategory::Disapplied, "Disapplied"}, {MisraCategory::Unknown, "Unknown"},
};

// The numbers of MISRA C stayed when editions were added; those of C++ were given anew.
MisraStandard StandardNamed(std::string_view edition) {
    if (!edition.starts_with("MISRA C++")) {
        return MisraStandard::C;
    }
    return edition.ends_with("2008") ? MisraStandard::Cpp2008 : MisraStandard::Cpp2023;
}

MisraCategory CategoryOfWord(std::string_view word) {
    const auto row = std::find_if(std::begin(CategoryNames), std::end(CategoryNames),
                                  [word](const auto& named) { return named.second == word; });
    if (row == std::end(CategoryNames)) {
        // The table is part of the program, so a fault in it is ours and not the user's.
        throw std::logic_error("guidelines.csv: category \"" + std::string(word) + "\"");
    }
    return row->first;
}

// A row of the table: standard, guideline, kind, category; a note for whoever reads the table follows.
void AddRow(std::string_view row, std::vector<MisraEdition>& editions) {
    const std::string_view name = Orvanta::TakeUpTo(row, ",");
    const std::string numbers(Orvanta::TakeUpTo(row, ","));
    const std::string kind(Orvanta::TakeUpTo(row, ","));
    // The rows of an edition stand together.
    if (editions.empty() || editions.back().name != name) {
        editions.push_back({name, StandardNamed(name), {}});
    }
    MisraEdition& edition = editions.back();
    const std::string year = edition.standard == MisraStandard::Cpp2023 ? "2023 " : "";
    const std::string language = edition.standard == MisraStandard::C ? "MISRA C " : "MISRA CPP ";
    // By the reader of names that users write, so that both agree on what a guideline is.
    const auto guideline = ParseMisraGuideline(language + year + kind + " " + numbers);
    const MisraCategory category = CategoryOfWord(Orvanta::TakeUpTo(row, ","));
    if (!guideline || guideline->standard != edition.standard ||
        !edition.categories.emplace(*guideline, category).second) {
        throw std::logic_error("guidelines.csv: guideline \"" + numbers + "\" of " + std::string(name));
    }
}

std::vector<MisraEdition> ReadTable() {
    std::vector<MisraEdition> editions;
    std::string_view rest = MisraTable;
    static_cast<void>(Orvanta::TakeLine(rest)); // the head
    while (!rest.empty()) {
        AddRow(Orvanta::TakeLine(rest), editions);
    }
    return editions;
}

} // namespace

std::string_view NameOf(MisraCategory category) noexcept {
    return CategoryNames[static_cast<std::size_t>(category)].second;
}

std::string_view MisraEdition::ShortName() const noexcept {
    std::string_view shortName = name;
    shortName.remove_prefix(Publisher.size()); // all names begin with it
    return shortName;
}

MisraCategory MisraEdition::CategoryOf(const MisraGuideline& guideline) const {
    const auto known = categories.find(guideline);
    return known == categories.end() ? MisraCategory::Unknown : known->second;
}

std::span<const MisraEdition> AllMisraEditions() {
    // Read when it is first asked for: most runs render no MISRA report. Any thread may be the first.
    static const std::vector<MisraEdition> editions = ReadTable();
    return editions;
}

const MisraEdition& MisraEditionNamed(std::string_view name) {
    std::string known;
    for (const MisraEdition& edition : AllMisraEditions()) {
        const std::string_view shortName = edition.ShortName();
        if (EqualsIgnoringCase(edition.name, name) || EqualsIgnoringCase(shortName, name)) {
            return edition;
        }
        known += (known.empty() ? "" : ", ") + std::string(shortName);
    }
    throw ConfigException("Wrong MISRA standard: \"" + std::string(name) + "\", expected one of " + known);
}

MisraEditions::MisraEditions() {
    for (const MisraEdition& edition : AllMisraEditions()) {
        // Both standards for C++ have one edition each.
        if (edition.standard != MisraStandard::C || edition.name == DefaultForC) {
            editions_[edition.standard] = &edition;
        }
    }
}

void MisraEditions::Choose(const MisraEdition& edition) {
    editions_[edition.standard] = &edition;
    chosen_.insert(edition.standard);
}

const MisraEdition* MisraEditions::Of(MisraStandard standard) const {
    const auto edition = editions_.find(standard);
    return edition == editions_.end() ? nullptr : edition->second;
}

MisraCategory MisraEditions::CategoryOf(const MisraGuideline& guideline) const {
    const MisraEdition* const edition = Of(guideline.standard);
    return edition == nullptr ? MisraCategory::Unknown : edition->CategoryOf(guideline);
}

} // namespace OrvlogConverter
