#include "render/MisraComplianceOutput.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvlogConverter {

namespace {

constexpr const char* Violations = "Violations";
constexpr const char* OnlyDeviations = "Deviations";
constexpr const char* Compliant = "Compliant";
constexpr const char* Disapplied = "Disapplied";

enum class Column { Text, Number };

void AppendCell(std::string& line, std::string_view text, std::size_t width, Column column) {
    const std::string padding(width - std::min(width, text.size()), ' ');
    line += column == Column::Number ? padding + std::string(text) : std::string(text) + padding;
    line += "  ";
}

// A mandatory guideline knows no deviations.
const char* StateOf(MisraCategory category, std::size_t violations, std::size_t deviations) {
    if (category == MisraCategory::Disapplied) {
        return Disapplied;
    }
    if (violations > 0 || (deviations > 0 && category == MisraCategory::Mandatory)) {
        return Violations;
    }
    return deviations > 0 ? OnlyDeviations : Compliant;
}

std::string TrimmedLine(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line + "\n";
}

} // namespace

MisraComplianceOutput::MisraComplianceOutput(const std::string& path, MisraCategoryPlan plan, Deviations deviations)
    : file_(path), plan_(std::move(plan)), deviations_(deviations) {
    for (const auto& [guideline, category] : plan_) {
        counts_[guideline]; // a guideline that was agreed on is reported even when nothing was found
    }
}

bool MisraComplianceOutput::Write(const ReportMessage& message) {
    const std::vector<MisraGuideline> guidelines = MisraGuidelinesOf(message);
    const bool isDeviation = message.falseAlarm && deviations_ == Deviations::Count;
    for (const MisraGuideline& guideline : guidelines) {
        Counts& counts = counts_[guideline];
        ++(isDeviation ? counts.deviations : counts.violations);
    }
    return !guidelines.empty();
}

void MisraComplianceOutput::End() {
    file_.Append(Text());
    file_.Commit();
}

MisraCategory MisraComplianceOutput::CategoryOf(const MisraGuideline& guideline) const {
    const auto planned = plan_.find(guideline);
    return planned == plan_.end() ? guideline.Category() : planned->second;
}

std::string MisraComplianceOutput::Line(const MisraGuideline& guideline, const Counts& counts) const {
    std::string category(NameOf(CategoryOf(guideline)));
    if (CategoryOf(guideline) != guideline.Category()) {
        category += " (" + std::string(NameOf(guideline.Category())) + ")";
    }
    std::string line;
    AppendCell(line, guideline.Name(), 18, Column::Text);
    AppendCell(line, category, 21, Column::Text);
    AppendCell(line, std::to_string(counts.violations), 10, Column::Number);
    if (deviations_ == Deviations::Count) {
        AppendCell(line, std::to_string(counts.deviations), 10, Column::Number);
    }
    line += StateOf(CategoryOf(guideline), counts.violations, counts.deviations);
    return TrimmedLine(std::move(line));
}

std::string MisraComplianceOutput::Text() const {
    std::string head;
    AppendCell(head, "Guideline", 18, Column::Text);
    AppendCell(head, "Category", 21, Column::Text);
    AppendCell(head, "Violations", 10, Column::Number);
    if (deviations_ == Deviations::Count) {
        AppendCell(head, "Deviations", 10, Column::Number);
    }
    std::string text = "MISRA compliance\n\n" + TrimmedLine(head + "State");

    std::array<Counts, 5> totals; // by category
    bool isKept = true;
    for (const auto& [guideline, counts] : counts_) {
        const MisraCategory category = CategoryOf(guideline);
        text += Line(guideline, counts);
        Counts& total = totals[static_cast<std::size_t>(category)];
        total.violations += counts.violations;
        total.deviations += counts.deviations;
        // An advisory guideline may be violated; that it is must be known, which this report sees to.
        isKept = isKept && (category == MisraCategory::Advisory ||
                            StateOf(category, counts.violations, counts.deviations) != Violations);
    }
    text += "\n";
    for (std::size_t category = 0; category < totals.size(); ++category) {
        const Counts& total = totals[category];
        if (total.violations + total.deviations == 0) {
            continue;
        }
        text += std::string(NameOf(static_cast<MisraCategory>(category))) + ": " + std::to_string(total.violations) +
                " violations";
        if (deviations_ == Deviations::Count) {
            text += ", " + std::to_string(total.deviations) + " deviations";
        }
        text += "\n";
    }
    return text + (isKept ? "Compliant\n" : "Not compliant\n");
}

} // namespace OrvlogConverter
