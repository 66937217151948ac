#include "render/misra/MisraGuideline.h"

#include "platform/Text.h"
#include "report/AnalyzerType.h"
#include "report/ReportMessage.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <span>
#include <tuple>

namespace OrvlogConverter {

namespace {

/// How the names of a standard's guidelines are written.
struct NameRow {
    MisraStandard standard;
    std::string_view prefix;
    char separator; // between the numbers
    std::size_t numbers;
};

// How many numbers a name has is part of what tells standards apart.
constexpr NameRow Names[] = {
    {MisraStandard::C, "MISRA-C-", '.', 2},
    {MisraStandard::Cpp2008, "MISRA-CPP-", '-', 3},
    {MisraStandard::Cpp2023, "MISRA-CPP-2023-", '.', 3},
    {MisraStandard::Other, "V", ' ', 1},
};

constexpr std::string_view CppWords[] = {"cpp", "c++"};
constexpr std::string_view RuleWords[] = {"rule", "r"};
constexpr std::string_view DirectiveWords[] = {"directive", "dir", "d"};

bool IsLetter(char character) {
    const char lower = Orvanta::ToLowerAscii(character);
    return lower >= 'a' && lower <= 'z';
}

/// Takes a name apart: words, numbers, and what separates them.
class NameReader {
public:
    explicit NameReader(std::string_view name) : rest_(name) {}

    /// Takes the word that comes next, separators before it included, when it is one of these.
    bool TakeWord(std::span<const std::string_view> words) {
        std::string_view rest = WithoutSeparators();
        std::size_t length = 0;
        while (length < rest.size() && (IsLetter(rest[length]) || rest[length] == '+')) {
            ++length;
        }
        const bool isKnown = std::any_of(words.begin(), words.end(), [&](std::string_view word) {
            return Orvanta::EqualsIgnoringCase(word, rest.substr(0, length));
        });
        if (isKnown) {
            rest_ = rest.substr(length);
        }
        return isKnown;
    }

    /// The same for one word.
    bool TakeWord(std::string_view word) { return TakeWord(std::span(&word, 1)); }

    /// Takes the number that comes next, when it is a year.
    std::optional<std::uint32_t> TakeYear() {
        std::string_view rest = WithoutSeparators();
        const std::optional<std::uint32_t> number = Orvanta::WholeNumber<std::uint32_t>(Digits(rest));
        // No guideline has a number as large, and no list is older.
        constexpr std::uint32_t FirstYear = 1998;
        if (!number || *number < FirstYear) {
            return std::nullopt;
        }
        rest_ = rest.substr(Digits(rest).size());
        return number;
    }

    /// The numbers that make up all of the rest, and the character between them; 0 when there is none or not one.
    /// False when there is something else.
    bool TakeNumbers(std::vector<std::uint32_t>& numbers, char& separator) {
        rest_ = WithoutSeparators();
        separator = 0;
        for (;;) {
            const std::optional<std::uint32_t> number = Orvanta::WholeNumber<std::uint32_t>(Digits(rest_));
            if (!number) {
                return false;
            }
            numbers.push_back(*number);
            rest_.remove_prefix(Digits(rest_).size());
            if (rest_.empty()) {
                return true;
            }
            // "8.13-2" mixes two ways of writing, and means nothing for certain.
            if ((rest_.front() != '.' && rest_.front() != '-') || (separator != 0 && separator != rest_.front())) {
                return false;
            }
            separator = rest_.front();
            rest_.remove_prefix(1);
        }
    }

private:
    // What stands behind the separators that come next; empty when nothing does.
    [[nodiscard]] std::string_view WithoutSeparators() const {
        const std::size_t begin = rest_.find_first_not_of("-_: ");
        return begin == std::string_view::npos ? std::string_view() : rest_.substr(begin);
    }

    // The digits that the text begins with, which may be none.
    [[nodiscard]] static std::string_view Digits(std::string_view text) {
        const auto end = std::find_if_not(text.begin(), text.end(), Orvanta::IsDigit);
        return text.substr(0, static_cast<std::size_t>(end - text.begin()));
    }

    std::string_view rest_;
};

// There is a row for each standard.
const NameRow& NamesOf(MisraStandard standard) {
    return *std::find_if(std::begin(Names), std::end(Names),
                         [standard](const NameRow& row) { return row.standard == standard; });
}

// Where no word tells the language, the count of numbers does.
MisraStandard StandardOf(bool isCpp, std::optional<std::uint32_t> year, char separator) {
    if (!isCpp) {
        return MisraStandard::C;
    }
    // Without a year, dashes tell the old numbers: those of 2023 are written with dots.
    const bool isOld = year ? *year < 2023 : separator == '-';
    return isOld ? MisraStandard::Cpp2008 : MisraStandard::Cpp2023;
}

// Word by word, as all usual spellings have the same parts in the same order and leave out different ones.
std::optional<MisraGuideline> ReadName(std::string_view name) {
    NameReader reader(name);
    // A year is only read behind a word for the language: without one, it is no known way to name an edition.
    const bool isMisra = reader.TakeWord("misra");
    const bool saysCpp = reader.TakeWord(CppWords);
    const bool saysC = !saysCpp && reader.TakeWord("c");
    const std::optional<std::uint32_t> year = saysCpp || saysC ? reader.TakeYear() : std::nullopt;
    const bool isDirective = reader.TakeWord(DirectiveWords);
    const bool saysRule = !isDirective && reader.TakeWord(RuleWords);
    std::vector<std::uint32_t> numbers;
    char separator = 0;
    // Bare numbers are refused here.
    if ((!isMisra && !isDirective && !saysRule) || !reader.TakeNumbers(numbers, separator)) {
        return std::nullopt;
    }
    const bool isCpp = saysCpp || (!saysC && numbers.size() == NamesOf(MisraStandard::Cpp2023).numbers);
    MisraGuideline guideline = {StandardOf(isCpp, year, separator)};
    // The numbers of MISRA C++:2023 tell directives by themselves, and names leave the word out.
    guideline.isRule = !isDirective || guideline.standard == MisraStandard::Cpp2023;
    // "MISRA C Rule 8" names a group of guidelines, not one.
    if (numbers.size() != NamesOf(guideline.standard).numbers) {
        return std::nullopt;
    }
    std::copy(numbers.begin(), numbers.end(), guideline.numbers.begin());
    return guideline;
}

// A code of the analyzer does not tell the numbers of a guideline, so it stands for itself.
std::optional<MisraGuideline> ReadCode(std::string_view code) {
    if (ClassifyCode(code) != AnalyzerType::Misra) {
        return std::nullopt;
    }
    MisraGuideline guideline;
    guideline.numbers.front() = Orvanta::WholeNumber<std::uint32_t>(code.substr(1)).value_or(0);
    return guideline;
}

// A message that names a guideline in two spellings counts once for it.
void AddOnce(std::vector<MisraGuideline>& guidelines, const MisraGuideline& guideline) {
    if (std::find(guidelines.begin(), guidelines.end(), guideline) == guidelines.end()) {
        guidelines.push_back(guideline);
    }
}

// Names may be set apart by blanks, and may hold some.
void ReadIdentifier(std::string_view identifier, MisraNames& names) {
    // As a whole first: "MISRA C 2012 Rule 8.13" is one name with blanks in it.
    if (const auto guideline = ParseMisraGuideline(identifier)) {
        AddOnce(names.guidelines, *guideline);
        return;
    }
    // All parts or none: half a list would hide that the other half was not understood. What does not speak of MISRA is
    // an identifier of another standard.
    bool isReadable = true;
    std::vector<MisraGuideline> parts;
    for (std::string_view rest = identifier; !rest.empty();) {
        if (const std::string_view part = Orvanta::TakeUpTo(rest, " "); !part.empty()) {
            const auto guideline = ParseMisraGuideline(part);
            isReadable = isReadable && guideline;
            if (guideline) {
                AddOnce(parts, *guideline);
            }
        }
    }
    if (isReadable) {
        std::for_each(parts.begin(), parts.end(), [&](const auto& part) { AddOnce(names.guidelines, part); });
    } else if (Orvanta::ContainsIgnoringCase(identifier, "misra")) {
        names.unreadable.emplace_back(identifier);
    }
}

} // namespace

bool MisraGuideline::operator<(const MisraGuideline& other) const noexcept {
    // Directives stand before rules, as in the published lists.
    return std::tie(standard, isRule, numbers) < std::tie(other.standard, other.isRule, other.numbers);
}

std::string MisraGuideline::Name() const {
    const NameRow& row = NamesOf(standard);
    std::string name(row.prefix);
    name += isRule ? "" : "DIR-";
    for (std::size_t index = 0; index < row.numbers; ++index) {
        if (index > 0) {
            name += row.separator;
        }
        name += std::to_string(numbers[index]);
    }
    return name;
}

std::optional<MisraGuideline> ParseMisraGuideline(std::string_view name) {
    // A code such as "V2501" has no word in front that the other reader would know.
    const std::optional<MisraGuideline> byCode = ReadCode(name);
    return byCode ? byCode : ReadName(name);
}

MisraNames MisraNamesOf(const ReportMessage& message) {
    MisraNames names;
    for (std::string_view rest = message.sastId; !rest.empty();) {
        ReadIdentifier(Orvanta::Trim(Orvanta::TakeUpTo(rest, ",;")), names);
    }
    // The code is the last resort: an identifier says more exactly which standard is meant.
    if (names.guidelines.empty() && names.unreadable.empty()) {
        if (const std::optional<MisraGuideline> byCode = ReadCode(message.code)) {
            names.guidelines.push_back(*byCode);
        }
    }
    return names;
}

} // namespace OrvlogConverter
