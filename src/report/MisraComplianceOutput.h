#pragma once

#include "report/IOutput.h"
#include "report/MisraGuideline.h"
#include "report/WholeFile.h"

#include <cstddef>
#include <map>
#include <string>

namespace OrvlogConverter {

/// A compliance report as text: each MISRA guideline that a message or the plan names, with its category, its counts
/// and whether it is kept, then a verdict. Messages about no guideline are not taken.
class MisraComplianceOutput : public IOutput {
public:
    enum class Deviations {
        None,  ///< every message is a violation
        Count, ///< messages marked as false alarms are deviations
    };

    /// \throws FilesystemException
    MisraComplianceOutput(const std::string& path, MisraCategoryPlan plan, Deviations deviations);

    /// True for a message about a guideline.
    bool Write(const ReportMessage& message) override;
    /// Writes the page.
    /// \throws FilesystemException
    void End() override;

private:
    struct Counts {
        std::size_t violations = 0;
        std::size_t deviations = 0;
    };

    [[nodiscard]] MisraCategory CategoryOf(const MisraGuideline& guideline) const;
    [[nodiscard]] std::string Line(const MisraGuideline& guideline, const Counts& counts) const;
    [[nodiscard]] std::string Text() const;

    WholeFile file_;
    MisraCategoryPlan plan_;
    Deviations deviations_;
    std::map<MisraGuideline, Counts> counts_;
};

} // namespace OrvlogConverter
