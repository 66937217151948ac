#pragma once

#include "analysis/CommitListener.h"
#include "report/ReportOutputs.h"
#include "report/SourceRootTransformer.h"
#include "shards/Part.h"
#include "shards/PartBlocks.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace Orvanta {

/// Names one of the units that a part is of: they are asked for in order, from 0, and not kept.
using PartUnitNames = std::function<PartUnit(std::size_t unit)>;

/// Writes what a shard finds in the place where a run of the whole writes its report: at the end of the chain through
/// which findings go, and where it hears how each unit ended.
///
/// From its first `Commit` on a part stands at the path that says of each unit that it was stopped: a shard that is
/// killed leaves no findings of an earlier run behind, and no half part. What it has found takes the place of that in
/// `End`. One thread at a time.
class PartWriter : public OrvlogConverter::ReportOutput, public CommitListener {
public:
    /// `skipped` outlives the writer. `head` needs no notices: these are what is written before the first `Commit`.
    PartWriter(std::string path, PartHead head, std::size_t units, PartUnitNames names,
               std::span<const SkippedInvocation> skipped);

    /// A finding of the unit that ends next.
    bool Write(const OrvlogConverter::ReportMessage& message) override;

    /// Where findings go that a suppression base hides.
    [[nodiscard]] OrvlogConverter::IOutput& HiddenFindings() noexcept { return hidden_; }

    /// Writes how the unit ended: in their order. The findings since the one before are its own.
    void UnitCommitted(std::size_t unit, const UnitResult& result) override;

    /// \throws OrvlogConverter::FilesystemException; all that follow do as well then
    void Commit() override;

    /// Units that have not ended were stopped. \throws like Commit
    void End() override;

private:
    /// Takes what is hidden.
    class HiddenTaker : public OrvlogConverter::IOutput {
    public:
        explicit HiddenTaker(PartWriter& part) : part_(part) {}

        bool Write(const OrvlogConverter::ReportMessage& message) override;

    private:
        PartWriter& part_;
    };

    // Hands the message to `take(message)`, its paths as the report has them.
    template <typename Take>
    void WithoutRoot(const OrvlogConverter::ReportMessage& message, const Take& take);
    // Writes all that stands in front of the entries.
    void WriteFront(PartBlockWriter& file) const;
    // Writes a part in which each unit was stopped.
    void WriteUnfinished() const;

    std::string path_;
    PartHead head_;
    std::size_t units_;
    PartUnitNames names_;
    std::span<const SkippedInvocation> skipped_;
    PartEncoder entries_;
    std::optional<OrvlogConverter::SourceRootHider> root_; // absent: paths stay as they are
    HiddenTaker hidden_{*this};
    std::optional<PartBlockWriter> file_; // from the first commit on
    std::size_t ended_ = 0;               // units
    std::size_t stopped_ = 0;             // of these
    std::string fault_;                   // the reason why nothing can be written any more
};

} // namespace Orvanta
