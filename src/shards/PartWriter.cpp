#include "shards/PartWriter.h"

#include "report/DuplicateFilter.h"
#include "report/WriteFailure.h"

#include <utility>

namespace Orvanta {

namespace {

using OrvlogConverter::ReportMessage;

constexpr auto EntryNumber = [](PartEntry entry) {
    return static_cast<std::uint64_t>(entry);
};

// Writes the values as a block of their own when there are so many bytes of them, and forgets them then.
void WriteBlock(PartBlockWriter& file, PartBlockKind kind, PartEncoder& values, std::size_t atLeast) {
    if (!values.Bytes().empty() && values.Bytes().size() >= atLeast) {
        file.Append(kind, values.Bytes());
        values.Clear();
    }
}

void AddOutcomeEntry(PartEncoder& entries, const UnitResult& result) {
    entries.Add(EntryNumber(PartEntry::Outcome));
    AddOutcome(entries, result);
}

void Finish(PartBlockWriter& file, std::size_t stoppedUnits) {
    PartEncoder end;
    end.Add(std::uint64_t{stoppedUnits});
    file.Append(PartBlockKind::End, end.Bytes());
    file.Commit();
}

} // namespace

PartWriter::PartWriter(std::string path, PartHead head, std::size_t units, PartUnitNames names,
                       std::span<const SkippedInvocation> skipped)
    : path_(std::move(path)), head_(std::move(head)), units_(units), names_(std::move(names)), skipped_(skipped) {
    if (const std::string root = SourceRootOf(head_); !root.empty()) {
        root_.emplace(nullptr, root);
    }
}

template <typename Take>
void PartWriter::WithoutRoot(const ReportMessage& message, const Take& take) {
    if (root_) {
        take(root_->Transform(message));
    } else {
        take(message);
    }
}

bool PartWriter::HiddenTaker::Write(const ReportMessage& message) {
    part_.WithoutRoot(message, [this](const ReportMessage& placeless) {
        part_.entries_.Add(EntryNumber(PartEntry::HiddenFinding)).Add(OrvlogConverter::FingerprintOf(placeless));
    });
    return true;
}

bool PartWriter::Write(const ReportMessage& message) {
    if (!file_) {
        head_.notices.push_back(message);
        return true;
    }
    WithoutRoot(message, [this](const ReportMessage& placeless) {
        entries_.Add(EntryNumber(PartEntry::Finding));
        AddMessage(entries_, placeless);
    });
    return true;
}

void PartWriter::UnitCommitted(std::size_t /*unit*/, const UnitResult& result) {
    AddOutcomeEntry(entries_, result);
    ++ended_;
    stopped_ += result.status == AnalyzerStatus::Stopped ? 1U : 0U;
}

void PartWriter::Commit() {
    OrvlogConverter::NamingFile(path_, [this] {
        if (!fault_.empty()) {
            entries_.Clear(); // nobody will write them
            throw FileException(path_, fault_);
        }
        try {
            if (!file_) {
                WriteUnfinished();
                WriteFront(file_.emplace(path_, AtomicFile::Durability::Synced));
            }
            WriteBlock(*file_, PartBlockKind::Entries, entries_, PartBlockSize);
        } catch (const FileException& error) {
            // Behind a part of a block nothing could be read.
            fault_ = error.Reason();
            throw;
        }
    });
}

void PartWriter::End() {
    while (ended_ < units_) {
        UnitCommitted(ended_, {.status = AnalyzerStatus::Stopped});
    }
    Commit();
    OrvlogConverter::NamingFile(path_, [this] {
        WriteBlock(*file_, PartBlockKind::Entries, entries_, 0);
        Finish(*file_, stopped_);
    });
}

void PartWriter::WriteFront(PartBlockWriter& file) const {
    PartEncoder values;
    AddHead(values, head_);
    WriteBlock(file, PartBlockKind::Head, values, 0);
    for (std::size_t unit = 0; unit < units_; ++unit) {
        AddUnit(values, names_(unit));
        WriteBlock(file, PartBlockKind::Units, values, PartBlockSize);
    }
    WriteBlock(file, PartBlockKind::Units, values, 0);
    for (const SkippedInvocation& invocation : skipped_) {
        AddSkipped(values, invocation);
        WriteBlock(file, PartBlockKind::Skipped, values, PartBlockSize);
    }
    WriteBlock(file, PartBlockKind::Skipped, values, 0);
}

void PartWriter::WriteUnfinished() const {
    PartBlockWriter file(path_, AtomicFile::Durability::Renamed);
    if (file.IsInPlace()) {
        OrvlogConverter::TellInPlace(path_);
    }
    WriteFront(file);
    PartEncoder entries;
    for (std::size_t unit = 0; unit < units_; ++unit) {
        AddOutcomeEntry(entries, {.status = AnalyzerStatus::Stopped});
        WriteBlock(file, PartBlockKind::Entries, entries, PartBlockSize);
    }
    WriteBlock(file, PartBlockKind::Entries, entries, 0);
    Finish(file, units_);
}

} // namespace Orvanta
