#include "render/misra/MisraComplianceOutput.h"

#include "report/Exceptions.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace OrvlogConverter {

namespace {

// The states that a guideline can have, as the report writes them.
constexpr const char* Violations = "Violations";
constexpr const char* OnlyDeviations = "Deviations";
constexpr const char* Compliant = "Compliant";
constexpr const char* Disapplied = "Disapplied";
constexpr const char* NotChecked = "Not checked";
constexpr const char* NoSuchGuideline = "No such guideline";

// Of the columns. A longer cell pushes the rest of its line to the right.
constexpr std::size_t NameWidth = 25;
constexpr std::size_t CategoryWidth = 21;
constexpr std::size_t CountWidth = 10;
constexpr std::size_t MarkedWidth = 15;

enum class Column { Text, Number };

// Texts begin and numbers end at the same place in each line.
void AppendCell(std::string& line, std::string_view text, std::size_t width, Column column) {
    const std::string padding(width - std::min(width, text.size()), ' ');
    line += column == Column::Number ? padding + std::string(text) : std::string(text) + padding;
    line += "  ";
}

const char* NameOf(MisraMarks marks) {
    return marks == MisraMarks::Deviations ? "Deviations" : "False positives";
}

// The standard's Document counts as Required here: it stands before Advisory.
bool IsBinding(MisraCategory category) {
    return category < MisraCategory::Advisory;
}

// "1 violation", "2 violations".
std::string Count(std::size_t count, const std::string& what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

} // namespace

/// What keeps the verdict from being "Compliant".
struct MisraComplianceOutput::Verdict {
    std::size_t violated = 0;
    std::size_t notChecked = 0;
    std::size_t unknown = 0;

    /// The last line of the report.
    [[nodiscard]] std::string Text() const {
        std::string text;
        const auto append = [&text](std::size_t count, const char* what, const char* how) {
            if (count > 0) {
                text += (text.empty() ? "Not compliant: " : ", ") + Count(count, what) + how;
            }
        };
        append(violated, "mandatory or required guideline", " violated");
        append(notChecked, "mandatory or required guideline", " not checked");
        append(unknown, "identifier", " of no known guideline");
        return (text.empty() ? Compliant : text) + "\n";
    }
};

MisraComplianceOutput::MisraComplianceOutput(const std::string& path, MisraSettings settings)
    : file_(path), settings_(std::move(settings)) {}

bool MisraComplianceOutput::Write(const ReportMessage& message) {
    // A message that names several guidelines counts for each of them.
    const MisraNames names = MisraNamesOf(message);
    for (const MisraGuideline& guideline : names.guidelines) {
        Counts& counts = counts_[guideline];
        ++(message.falseAlarm ? counts.marked : counts.violations);
    }
    for (const std::string& name : names.unreadable) {
        ++unreadable_[name];
    }
    return !names.guidelines.empty() || !names.unreadable.empty();
}

void MisraComplianceOutput::End() {
    // Asked before the text is made, which adds lines for guidelines without findings.
    const bool isNothingKnown = IsNothingKnown();
    file_.Append(Text());
    // The report is written before the error is thrown: it says the same, for whoever looks at the file only.
    file_.Commit();
    if (isNothingKnown) {
        throw ConfigException("Nothing was checked: no finding is about a MISRA guideline, and no list says which ones "
                              "the analysis looked at");
    }
}

bool MisraComplianceOutput::IsNothingKnown() const {
    return counts_.empty() && unreadable_.empty() && (settings_.checked == nullptr || !settings_.checked->IsKnown());
}

MisraCategory MisraComplianceOutput::CategoryOf(const MisraGuideline& guideline) const {
    // The plan was checked against the editions when it was read, so it may overrule them here.
    const auto planned = settings_.plan.find(guideline);
    return planned == settings_.plan.end() ? settings_.editions.CategoryOf(guideline) : planned->second;
}

bool MisraComplianceOutput::IsChecked(const MisraGuideline& guideline) const {
    // Where nobody has said what was checked, all counts as checked; the report says that it does so.
    return settings_.checked == nullptr || !settings_.checked->IsKnown() ||
           settings_.checked->Guidelines().contains(guideline);
}

const char* MisraComplianceOutput::StateOf(const MisraGuideline& guideline, const Counts& counts) const {
    const MisraCategory category = CategoryOf(guideline);
    const bool areDeviations = settings_.marks == MisraMarks::Deviations && counts.marked > 0;
    // The order of these questions decides: a disapplied guideline can't be violated, and any violation outweighs all
    // deviations.
    if (category == MisraCategory::Unknown) {
        return NoSuchGuideline;
    }
    if (category == MisraCategory::Disapplied) {
        return Disapplied;
    }
    // From a mandatory guideline nobody may deviate.
    if (counts.violations > 0 || (areDeviations && category == MisraCategory::Mandatory)) {
        return Violations;
    }
    if (areDeviations) {
        return OnlyDeviations;
    }
    // A marked finding proves that somebody looked.
    return IsChecked(guideline) || counts.marked > 0 ? Compliant : NotChecked;
}

/// Every guideline of the standards concerned gets its line.
/// Leaves a row in `counts_` for each of them.
void MisraComplianceOutput::ListConcerned() {
    std::set<MisraStandard> concerned = settings_.editions.Chosen();
    for (const auto& [guideline, counts] : counts_) {
        concerned.insert(guideline.standard);
    }
    for (const auto& [guideline, category] : settings_.plan) {
        concerned.insert(guideline.standard);
        // Also when no edition lists it, so that nothing of the plan is lost from the report.
        counts_[guideline];
    }
    if (settings_.checked != nullptr && settings_.checked->IsKnown()) {
        for (const MisraGuideline& guideline : settings_.checked->Guidelines()) {
            concerned.insert(guideline.standard);
        }
    }
    for (const MisraStandard standard : concerned) {
        if (const MisraEdition* const edition = settings_.editions.Of(standard)) {
            for (const auto& [guideline, category] : edition->categories) {
                counts_[guideline];
            }
        }
    }
}

void MisraComplianceOutput::AppendLine(std::string& text, const MisraGuideline& guideline, const Counts& counts) const {
    const MisraCategory standard = settings_.editions.CategoryOf(guideline);
    std::string category(OrvlogConverter::NameOf(CategoryOf(guideline)));
    if (CategoryOf(guideline) != standard) {
        // What the standard says stands behind what the project has made of it.
        category += " (" + std::string(OrvlogConverter::NameOf(standard)) + ")";
    }
    AppendCell(text, guideline.Name(), NameWidth, Column::Text);
    AppendCell(text, category, CategoryWidth, Column::Text);
    AppendCell(text, std::to_string(counts.violations), CountWidth, Column::Number);
    AppendCell(text, std::to_string(counts.marked), MarkedWidth, Column::Number);
    text += std::string(StateOf(guideline, counts)) + "\n";
}

void MisraComplianceOutput::AppendTable(std::string& text) const {
    std::optional<MisraStandard> standard;
    for (const auto& [guideline, counts] : counts_) {
        // Guidelines are sorted by standard, so a new one begins a table of its own.
        if (guideline.standard != standard) {
            standard = guideline.standard;
            const MisraEdition* const edition = settings_.editions.Of(*standard);
            text += "\n" + std::string(edition == nullptr ? "Diagnostics of no known guideline" : edition->name) + "\n";
            AppendCell(text, "Guideline", NameWidth, Column::Text);
            AppendCell(text, "Category", CategoryWidth, Column::Text);
            AppendCell(text, "Violations", CountWidth, Column::Number);
            AppendCell(text, NameOf(settings_.marks), MarkedWidth, Column::Number);
            text += "State\n";
        }
        AppendLine(text, guideline, counts);
    }
    if (!unreadable_.empty()) {
        text += "\nIdentifiers that name no guideline\n";
        for (const auto& [name, count] : unreadable_) {
            text += name + ": " + Count(count, "finding") + "\n";
        }
    }
}

void MisraComplianceOutput::AppendTotals(std::string& text) const {
    // A place for each category, of which Unknown is the last.
    std::array<Counts, static_cast<std::size_t>(MisraCategory::Unknown) + 1> totals;
    for (const auto& [guideline, counts] : counts_) {
        Counts& total = totals[static_cast<std::size_t>(CategoryOf(guideline))];
        total.violations += counts.violations;
        total.marked += counts.marked;
    }
    for (std::size_t category = 0; category < totals.size(); ++category) {
        const Counts& total = totals[category];
        // Categories without a finding would only hide the others.
        if (total.violations + total.marked > 0) {
            text += std::string(OrvlogConverter::NameOf(static_cast<MisraCategory>(category))) + ": " +
                    Count(total.violations, "violation") + ", " +
                    Count(total.marked, settings_.marks == MisraMarks::Deviations ? "deviation" : "false positive") +
                    "\n";
        }
    }
}

void MisraComplianceOutput::AppendVerdict(std::string& text) const {
    Verdict verdict;
    // An identifier that can't be read may stand for a mandatory guideline, so it keeps the verdict from being good.
    verdict.unknown = unreadable_.size();
    for (const auto& [guideline, counts] : counts_) {
        const std::string_view state = StateOf(guideline, counts);
        // A row without a finding comes from a list or the plan, and violates nothing.
        if (state == NoSuchGuideline) {
            verdict.unknown += counts.violations + counts.marked > 0 ? 1U : 0U;
        } else if (IsBinding(CategoryOf(guideline))) {
            verdict.violated += state == Violations ? 1U : 0U;
            verdict.notChecked += state == NotChecked ? 1U : 0U;
        }
    }
    if (settings_.checked == nullptr || !settings_.checked->IsKnown()) {
        // In front of the verdict, which is worth less then.
        text += "No list says which guidelines were checked: those without findings are taken for checked.\n";
    }
    text += verdict.Text();
}

std::string MisraComplianceOutput::Text() {
    if (IsNothingKnown()) {
        return "MISRA compliance\n\nNothing was checked\n";
    }
    ListConcerned();
    std::string text = "MISRA compliance\n";
    AppendTable(text);
    text += "\n";
    AppendTotals(text);
    AppendVerdict(text);
    return text;
}

} // namespace OrvlogConverter
