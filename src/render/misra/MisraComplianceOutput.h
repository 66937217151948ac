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

    bool Write(const ReportMessage& message) override;

    /// \throws FilesystemException, and ConfigException, the report being written, when nothing was checked
    void End() override;

private:
    struct Counts {
        std::size_t violations = 0;
        std::size_t marked = 0;
    };

    struct Verdict;

    [[nodiscard]] MisraCategory CategoryOf(const MisraGuideline& guideline) const;
    [[nodiscard]] bool IsChecked(const MisraGuideline& guideline) const;
    [[nodiscard]] const char* StateOf(const MisraGuideline& guideline, const Counts& counts) const;
    [[nodiscard]] bool IsNothingKnown() const;
    void ListConcerned();
    void AppendLine(std::string& text, const MisraGuideline& guideline, const Counts& counts) const;
    void AppendTable(std::string& text) const;
    void AppendTotals(std::string& text) const;
    void AppendVerdict(std::string& text) const;
    [[nodiscard]] std::string Text();

    WholeFile file_;
    MisraSettings settings_;
    std::map<MisraGuideline, Counts> counts_;
    std::map<std::string, std::size_t> unreadable_; // identifiers, and how many messages have each
};

} // namespace OrvlogConverter
