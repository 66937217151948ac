#pragma once

#include "render/misra/MisraPlan.h"
#include "report/IOutput.h"
#include "report/WholeFile.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>

namespace OrvlogConverter {

/// What a message marked as a false alarm is.
enum class MisraMarks {
    FalsePositives, ///< no violation
    Deviations,     ///< a violation that was agreed on, which a mandatory guideline knows none of
};

/// What a compliance report is made by.
struct MisraSettings {
    MisraEditions editions = {};
    MisraCategoryPlan plan = {};
    MisraMarks marks = MisraMarks::FalsePositives;
    std::shared_ptr<const MisraChecked> checked = nullptr; ///< may be filled until the end; null: nothing is known
};

/// A compliance report as text: every guideline of the standards concerned with its category, its counts and its state,
/// then a verdict by the rules of MISRA Compliance:2020. Concerned are the standards that were chosen and those that a
/// message, the plan or the list of checked guidelines names. Messages about no guideline are not taken.
class MisraComplianceOutput : public IOutput {
public:
    /// \throws FilesystemException
    MisraComplianceOutput(const std::string& path, MisraSettings settings);

    /// Counts the message for each guideline that it names. False when it is not about MISRA.
    bool Write(const ReportMessage& message) override;

    /// Makes the report and puts it in its place.
    /// \throws FilesystemException, and ConfigException, the report being written, when nothing was checked
    void End() override;

private:
    /// Of one guideline.
    struct Counts {
        std::size_t violations = 0;
        std::size_t marked = 0;
    };

    struct Verdict;

    /// The plan's category where it names one, else that of the edition.
    [[nodiscard]] MisraCategory CategoryOf(const MisraGuideline& guideline) const;
    /// True too when it is not known what was checked.
    [[nodiscard]] bool IsChecked(const MisraGuideline& guideline) const;
    /// One of the words that the source defines; `counts` are those of the guideline.
    [[nodiscard]] const char* StateOf(const MisraGuideline& guideline, const Counts& counts) const;
    /// Whether neither a message nor a list has said anything. Before `ListConcerned`, which adds to the counts.
    [[nodiscard]] bool IsNothingKnown() const;
    /// Gives each guideline of the standards concerned a place in `counts_`, with zeros where nothing was found.
    void ListConcerned();
    /// Appends the guideline's line of its table.
    void AppendLine(std::string& text, const MisraGuideline& guideline, const Counts& counts) const;
    /// Appends a table for each standard, then the identifiers that could not be read.
    void AppendTable(std::string& text) const;
    /// Appends a line for each category that has a finding.
    void AppendTotals(std::string& text) const;
    /// Appends what keeps the project from being compliant, or that nothing does.
    void AppendVerdict(std::string& text) const;
    /// The whole report. Called once, as it fills `counts_` up.
    [[nodiscard]] std::string Text();

    WholeFile file_;
    MisraSettings settings_;
    std::map<MisraGuideline, Counts> counts_;
    std::map<std::string, std::size_t> unreadable_; // identifiers, and how many messages have each
};

} // namespace OrvlogConverter
