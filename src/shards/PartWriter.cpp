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

/// Gathers values and writes them in blocks of one kind.
class BlockFiller {
public:
    BlockFiller(PartBlockWriter& file, PartBlockKind kind) : file_(file), kind_(kind) {}

    PartEncoder& Values() noexcept { return values_; }

    void WriteFrom(std::size_t size) {
        if (values_.Bytes().size() >= size && !values_.Bytes().empty()) {
            file_.Append(kind_, values_.Bytes());
            values_.Clear();
        }
    }

private:
    PartBlockWriter& file_;
    PartBlockKind kind_;
    PartEncoder values_;
};

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
    : path_(std::move(path)), head_(std::move(head)), units_(units), names_(std::move(names)), skipped_(skipped) {}

bool PartWriter::HiddenTaker::Write(const ReportMessage& message) {
    entries_.Add(EntryNumber(PartEntry::HiddenFinding)).Add(OrvlogConverter::FingerprintOf(message));
    return true;
}

bool PartWriter::Write(const ReportMessage& message) {
    if (!file_) {
        head_.notices.push_back(message);
        return true;
    }
    entries_.Add(EntryNumber(PartEntry::Finding));
    AddMessage(entries_, message);
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
            throw FileException(path_, fault_);
        }
        try {
            if (!file_) {
                WriteUnfinished();
                WriteFront(file_.emplace(path_, AtomicFile::Durability::Synced));
            }
            WriteEntries(PartBlockSize);
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
        WriteEntries(0);
        Finish(*file_, stopped_);
    });
}

void PartWriter::WriteFront(PartBlockWriter& file) const {
    BlockFiller head(file, PartBlockKind::Head);
    AddHead(head.Values(), head_);
    head.WriteFrom(0);
    BlockFiller units(file, PartBlockKind::Units);
    for (std::size_t unit = 0; unit < units_; ++unit) {
        AddUnit(units.Values(), names_(unit));
        units.WriteFrom(PartBlockSize);
    }
    units.WriteFrom(0);
    BlockFiller skipped(file, PartBlockKind::Skipped);
    for (const SkippedInvocation& invocation : skipped_) {
        AddSkipped(skipped.Values(), invocation);
        skipped.WriteFrom(PartBlockSize);
    }
    skipped.WriteFrom(0);
}

void PartWriter::WriteUnfinished() const {
    PartBlockWriter file(path_, AtomicFile::Durability::Renamed);
    if (file.IsInPlace()) {
        OrvlogConverter::TellInPlace(path_);
    }
    WriteFront(file);
    BlockFiller entries(file, PartBlockKind::Entries);
    for (std::size_t unit = 0; unit < units_; ++unit) {
        AddOutcomeEntry(entries.Values(), {.status = AnalyzerStatus::Stopped});
        entries.WriteFrom(PartBlockSize);
    }
    entries.WriteFrom(0);
    Finish(file, units_);
}

void PartWriter::WriteEntries(std::size_t atLeast) {
    if (entries_.Bytes().size() >= atLeast && !entries_.Bytes().empty()) {
        file_->Append(PartBlockKind::Entries, entries_.Bytes());
        entries_.Clear();
    }
}

} // namespace Orvanta
