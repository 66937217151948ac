#include "report/AnalyzerType.h"

#include "platform/Table.h"
#include "platform/Text.h"
#include "report/Exceptions.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace OrvlogConverter {

namespace {

// The names under which groups are asked for; with letter case.
struct NameRow {
    std::string_view name;
    AnalyzerType analyzer;
};

constexpr NameRow Names[] = {
    {"FAIL", AnalyzerType::Fail},       {"GA", AnalyzerType::GeneralAnalysis},  {"64", AnalyzerType::Bits64},
    {"OP", AnalyzerType::Optimization}, {"CS", AnalyzerType::CustomerSpecific}, {"MISRA", AnalyzerType::Misra},
    {"OWASP", AnalyzerType::Owasp},     {"AUTOSAR", AnalyzerType::Autosar},
};

// Numbers from `first` to `last`, both included.
struct RangeRow {
    std::uint32_t first;
    std::uint32_t last;
    AnalyzerType analyzer;
};

// The first row that holds the number wins.
constexpr RangeRow Ranges[] = {
    {4, 4, AnalyzerType::Bits64}, // the one 64-bit diagnostic among the failures
    {1, 99, AnalyzerType::Fail},
    {100, 499, AnalyzerType::Bits64},
    {500, 799, AnalyzerType::GeneralAnalysis},
    {800, 999, AnalyzerType::Optimization},
    {1000, 1999, AnalyzerType::GeneralAnalysis},
    {2000, 2499, AnalyzerType::CustomerSpecific},
    {2500, 2999, AnalyzerType::Misra},
    {3000, 3499, AnalyzerType::GeneralAnalysis},
    {3500, 3999, AnalyzerType::Autosar},
    {5000, 5999, AnalyzerType::Owasp},
    {6000, 6999, AnalyzerType::GeneralAnalysis},
};

// Empty parts are parts: a list with one is wrong, and must not pass for a shorter one.
std::vector<std::string_view> Split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find(separator);
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return parts;
}

// Throws for a name that means nothing.
AnalyzerType AnalyzerNamed(std::string_view name) {
    const NameRow* const row = Orvanta::FindRow(Names, &NameRow::name, name);
    if (row == nullptr) {
        throw ConfigException("Wrong analyzer name: " + std::string(name));
    }
    return row->analyzer;
}

// `text` lies in `separated`, a copy of what the user wrote in which only separators are replaced.
int ParseLevel(std::string_view text, const std::string& separated, std::string_view specification) {
    const std::optional<int> level = Orvanta::WholeNumber<int>(text);
    if (!level) {
        const auto place = static_cast<std::size_t>(text.data() - separated.data()) + 1;
        throw ConfigException("Wrong analyzers format: " + std::string(specification),
                              "\"" + std::string(text) + "\" at character " + std::to_string(place) +
                                  " is no level; write analyzers and levels without blanks, such as GA:1,2;64:1");
    }
    return *level;
}

} // namespace

std::uint32_t CodeNumber(std::string_view code) noexcept {
    if (code.size() < 2 || code.front() != 'V') {
        return 0;
    }
    return Orvanta::WholeNumber<std::uint32_t>(code.substr(1)).value_or(0);
}

AnalyzerType ClassifyCode(std::string_view code) noexcept {
    // 0 for what is no code, and no row holds it.
    const std::uint32_t number = CodeNumber(code);
    for (const RangeRow& row : Ranges) {
        if (number >= row.first && number <= row.last) {
            return row.analyzer;
        }
    }
    // Findings of other tools have no number: they count among the general ones.
    return code == "External" ? AnalyzerType::GeneralAnalysis : AnalyzerType::Unknown;
}

std::vector<AnalyzerLevels> ParseAnalyzerSpecification(std::string_view text) {
    if (text == "all" || text == "ALL") {
        return {};
    }
    // One separator is left, so that a level's place in it is its place in what the user wrote.
    std::string separated(text);
    std::replace(separated.begin(), separated.end(), '+', ';');
    std::vector<AnalyzerLevels> analyzers;
    for (const std::string_view item : Split(separated, ';')) {
        const std::size_t colon = item.find(':');
        // Without a colon all of the item is the name.
        AnalyzerLevels parsed = {AnalyzerNamed(item.substr(0, colon))};
        if (colon != std::string_view::npos) {
            for (const std::string_view level : Split(item.substr(colon + 1), ',')) {
                parsed.levels.push_back(ParseLevel(level, separated, text));
            }
        }
        analyzers.push_back(std::move(parsed));
    }
    return analyzers;
}

LevelTable::LevelTable(const std::vector<AnalyzerLevels>& analyzers) {
    // Nothing asked for lets everything pass; otherwise only what a row names does.
    passes_.fill(analyzers.empty());
    for (const AnalyzerLevels& row : analyzers) {
        const auto entries =
            passes_.begin() + static_cast<std::ptrdiff_t>(Levels * static_cast<std::size_t>(row.analyzer));
        if (row.levels.empty()) {
            std::fill_n(entries, Levels, true);
        }
        for (const int level : row.levels) {
            if (level >= 1 && level <= static_cast<int>(Levels)) { // no message has another one
                *(entries + (level - 1)) = true;
            }
        }
    }
}

bool LevelTable::Passes(std::string_view code, std::uint32_t level) const noexcept {
    const AnalyzerType analyzer = ClassifyCode(code);
    if (level < 1 || level > Levels || analyzer == AnalyzerType::Unknown) {
        return true;
    }
    return passes_[static_cast<std::size_t>(analyzer) * Levels + level - 1];
}

} // namespace OrvlogConverter
