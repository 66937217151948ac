#include "render/MisraGuideline.h"

#include "platform/Exceptions.h"
#include "platform/Files.h"
#include "platform/Text.h"
#include "report/AnalyzerType.h"
#include "report/Exceptions.h"
#include "report/ReportMessage.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <system_error>
#include <tuple>
#include <utility>

namespace OrvlogConverter {

namespace {

constexpr std::uint8_t M = 0; // mandatory
constexpr std::uint8_t R = 1; // required
constexpr std::uint8_t A = 2; // advisory

/// The categories of one chapter's guidelines, from the first on.
struct ChapterRow {
    bool isRule;
    std::uint32_t chapter;
    std::array<std::uint8_t, 21> categories;
    std::size_t count;
};

constexpr ChapterRow CChapters[] = {
    {false, 1,  {R},                                                             1 },
    {false, 2,  {R},                                                             1 },
    {false, 3,  {R},                                                             1 },
    {false, 4,  {R, A, R, A, A, A, R, A, A, R, R, R, A, R},                      14},
    {true,  1,  {R, A, R, R},                                                    4 },
    {true,  2,  {R, R, A, A, A, A, A},                                           7 },
    {true,  3,  {R, R},                                                          2 },
    {true,  4,  {R, A},                                                          2 },
    {true,  5,  {R, R, R, R, R, R, R, R, A},                                     9 },
    {true,  6,  {R, R},                                                          2 },
    {true,  7,  {R, R, R, R},                                                    4 },
    {true,  8,  {R, R, R, R, R, R, A, R, A, R, A, R, A, R},                      14},
    {true,  9,  {M, R, R, R, R},                                                 5 },
    {true,  10, {R, R, R, R, A, R, R, R},                                        8 },
    {true,  11, {R, R, R, A, A, R, R, R, R},                                     9 },
    {true,  12, {A, R, A, A, M},                                                 5 },
    {true,  13, {R, R, A, A, R, M},                                              6 },
    {true,  14, {R, R, R, R},                                                    4 },
    {true,  15, {A, R, R, A, A, R, R},                                           7 },
    {true,  16, {R, R, R, R, R, R, R},                                           7 },
    {true,  17, {R, R, M, M, A, M, R, A},                                        8 },
    {true,  18, {R, R, R, A, A, R, R, R},                                        8 },
    {true,  19, {M, A},                                                          2 },
    {true,  20, {A, R, R, R, A, R, R, R, R, A, R, R, R, R},                      14},
    {true,  21, {R, R, R, R, R, R, R, R, R, R, R, A, M, R, R, R, M, M, M, M, R}, 21},
    {true,  22, {R, M, R, M, M, M, R, R, R, R},                                  10},
};

// The rules of MISRA C++ that say "should"; all others are required.
constexpr std::array<std::uint32_t, 3> CppAdvisory[] = {
    {2,  5,  1 },
    {2,  7,  3 },
    {2,  10, 5 },
    {3,  9,  2 },
    {5,  0,  2 },
    {5,  2,  3 },
    {5,  2,  9 },
    {5,  2,  10},
    {5,  19, 1 },
    {10, 1,  1 },
    {10, 2,  1 },
    {12, 1,  2 },
    {14, 8,  2 },
    {15, 0,  2 },
    {15, 3,  2 },
    {16, 2,  5 },
    {16, 3,  2 },
};

struct PrefixRow {
    std::string_view prefix;
    MisraStandard standard;
    bool isRule;
    char separator; // between the numbers
    std::size_t numbers;
};

// The first prefix that fits wins: the longer ones stand first.
constexpr PrefixRow Prefixes[] = {
    {"MISRA-C-DIR-", MisraStandard::C,     false, '.', 2},
    {"MISRA-C-",     MisraStandard::C,     true,  '.', 2},
    {"MISRA-CPP-",   MisraStandard::Cpp,   true,  '-', 3},
    {"V",            MisraStandard::Other, true,  ' ', 1},
};

constexpr std::pair<MisraCategory, std::string_view> CategoryNames[] = {
    {MisraCategory::Mandatory,  "Mandatory" },
    {MisraCategory::Required,   "Required"  },
    {MisraCategory::Advisory,   "Advisory"  },
    {MisraCategory::Disapplied, "Disapplied"},
    {MisraCategory::Unknown,    "Unknown"   },
};

const PrefixRow& PrefixOf(const MisraGuideline& guideline) {
    return *std::find_if(std::begin(Prefixes), std::end(Prefixes), [&guideline](const PrefixRow& row) {
        return row.standard == guideline.standard && row.isRule == guideline.isRule;
    });
}

bool ParseNumbers(std::string_view text, const PrefixRow& row, MisraGuideline& guideline) {
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t index = 0; index < row.numbers; ++index) {
        if (index > 0 && (at == end || *at++ != row.separator)) {
            return false;
        }
        const auto [stop, error] = std::from_chars(at, end, guideline.numbers[index]);
        if (error != std::errc{}) {
            return false;
        }
        at = stop;
    }
    return at == end;
}

bool IsAllowed(MisraCategory standard, MisraCategory planned) {
    const bool isDisapplied = planned == MisraCategory::Disapplied;
    if (standard == MisraCategory::Unknown || (isDisapplied && standard == MisraCategory::Advisory)) {
        return true;
    }
    return !isDisapplied && planned <= standard; // the more binding category stands first
}

MisraCategory CategoryNamed(std::string_view name) {
    for (const auto& [category, known] : CategoryNames) {
        if (Orvanta::EqualsIgnoringCase(known, name) && category != MisraCategory::Unknown) {
            return category;
        }
    }
    throw ConfigException("wrong category \"" + std::string(name) +
                          "\", expected Mandatory, Required, Advisory or Disapplied");
}

void ReadPlanLine(std::string_view line, MisraCategoryPlan& plan) {
    const std::size_t equalsSign = line.find('=');
    const std::string_view name = Orvanta::Trim(line.substr(0, equalsSign));
    const std::optional<MisraGuideline> guideline = ParseMisraGuideline(name);
    if (equalsSign == std::string_view::npos || !guideline) {
        throw ConfigException("\"" + std::string(line) + "\", expected a guideline, \"=\" and its category");
    }
    const MisraCategory planned = CategoryNamed(Orvanta::Trim(line.substr(equalsSign + 1)));
    const MisraCategory standard = guideline->Category();
    if (!IsAllowed(standard, planned)) {
        throw ConfigException(std::string(name) + " is " + std::string(NameOf(standard)) + " and can't become " +
                              std::string(NameOf(planned)));
    }
    if (!plan.emplace(*guideline, planned).second) {
        throw ConfigException(std::string(name) + " stands twice");
    }
}

} // namespace

std::string_view NameOf(MisraCategory category) noexcept {
    return CategoryNames[static_cast<std::size_t>(category)].second;
}

bool MisraGuideline::operator<(const MisraGuideline& other) const noexcept {
    return std::tie(standard, isRule, numbers) < std::tie(other.standard, other.isRule, other.numbers);
}

std::string MisraGuideline::Name() const {
    const PrefixRow& row = PrefixOf(*this);
    std::string name(row.prefix);
    for (std::size_t index = 0; index < row.numbers; ++index) {
        if (index > 0) {
            name += row.separator;
        }
        name += std::to_string(numbers[index]);
    }
    return name;
}

MisraCategory MisraGuideline::Category() const noexcept {
    switch (standard) {
    case MisraStandard::C:
        for (const ChapterRow& row : CChapters) {
            if (row.isRule == isRule && row.chapter == numbers[0] && numbers[1] >= 1 && numbers[1] <= row.count) {
                return CategoryNames[row.categories[numbers[1] - 1]].first;
            }
        }
        return MisraCategory::Unknown;
    case MisraStandard::Cpp:
        return std::find(std::begin(CppAdvisory), std::end(CppAdvisory), numbers) == std::end(CppAdvisory)
                   ? MisraCategory::Required
                   : MisraCategory::Advisory;
    case MisraStandard::Other:
        break;
    }
    return MisraCategory::Unknown;
}

std::optional<MisraGuideline> ParseMisraGuideline(std::string_view name) {
    for (const PrefixRow& row : Prefixes) {
        if (!Orvanta::EqualsIgnoringCase(name.substr(0, row.prefix.size()), row.prefix)) {
            continue;
        }
        MisraGuideline guideline = {row.standard, row.isRule};
        if (!ParseNumbers(name.substr(row.prefix.size()), row, guideline) ||
            (row.standard == MisraStandard::Other && ClassifyCode(name) != AnalyzerType::Misra)) {
            return std::nullopt;
        }
        return guideline;
    }
    return std::nullopt;
}

std::vector<MisraGuideline> MisraGuidelinesOf(const ReportMessage& message) {
    std::vector<MisraGuideline> guidelines;
    std::string_view rest = message.sastId;
    while (!rest.empty()) {
        const std::optional<MisraGuideline> guideline = ParseMisraGuideline(Orvanta::TakeUpTo(rest, ",; "));
        if (guideline && std::find(guidelines.begin(), guidelines.end(), *guideline) == guidelines.end()) {
            guidelines.push_back(*guideline);
        }
    }
    if (guidelines.empty()) {
        if (const std::optional<MisraGuideline> byCode = ParseMisraGuideline(message.code)) {
            guidelines.push_back(*byCode);
        }
    }
    return guidelines;
}

MisraCategoryPlan ReadMisraCategoryPlan(const std::string& path) {
    std::string text;
    try {
        text = Orvanta::ReadWholeFile(path);
    } catch (const Orvanta::ZelmException& error) {
        throw FilesystemException(std::string("Couldn't read file ") + error.what());
    }
    MisraCategoryPlan plan;
    std::string_view rest = text;
    for (std::size_t number = 1; !rest.empty(); ++number) {
        const std::string_view line = Orvanta::TakeLine(rest);
        const std::string_view content = Orvanta::Trim(line.substr(0, line.find('#')));
        try {
            if (!content.empty()) {
                ReadPlanLine(content, plan);
            }
        } catch (const ConfigException& error) {
            throw ConfigException(path + ", line " + std::to_string(number) + ": " + error.what());
        }
    }
    return plan;
}

} // namespace OrvlogConverter
