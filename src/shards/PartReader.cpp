#include "shards/PartReader.h"

#include "platform/Exceptions.h"

#include <utility>

namespace Orvanta {

PartReader::PartReader(std::string path) : blocks_(std::move(path)) {
    NamingPart([this] { ReadFront(); });
    blocks_.Release();
}

template <typename Work>
void PartReader::NamingPart(const Work& work) {
    try {
        work();
    } catch (const DamagedPart& error) {
        throw ZelmException(Path() + ": " + error.what());
    }
}

PartBlockKind PartReader::NextBlock() {
    const PartBlockKind before = blocks_.Kind();
    blocks_.Next();
    if (blocks_.Kind() < before) { // the kinds stand in their order
        throw DamagedPart();
    }
    return blocks_.Kind();
}

void PartReader::ReadFront() {
    if (NextBlock() != PartBlockKind::Head) {
        throw DamagedPart();
    }
    const std::string head = blocks_.Text();
    PartDecoder decoder(head);
    head_ = TakeHead(decoder);
    PartBlockReader::Place behind = blocks_.Here();
    skipped_ = entries_ = behind;
    while (NextBlock() != PartBlockKind::End) {
        if (blocks_.Kind() == PartBlockKind::Units) {
            ReadUnits();
        }
        behind = blocks_.Here();
        skipped_ = blocks_.Kind() < PartBlockKind::Skipped ? behind : skipped_;
        entries_ = blocks_.Kind() < PartBlockKind::Entries ? behind : entries_;
    }
    const std::string end = blocks_.Text();
    stopped_ = static_cast<std::size_t>(PartDecoder(end).NumberUpTo(units_.size()));
}

void PartReader::ReadUnits() {
    const std::string text = blocks_.Text();
    for (PartDecoder decoder(text); !decoder.IsAtEnd();) {
        PartUnit unit = TakeUnit(decoder);
        if (unit.number >= head_.allUnits || (!units_.empty() && unit.number <= units_.back().number)) {
            throw DamagedPart();
        }
        units_.push_back(std::move(unit));
    }
}

std::vector<SkippedInvocation> PartReader::ReadSkipped() {
    std::vector<SkippedInvocation> skipped;
    NamingPart([&] {
        for (blocks_.GoTo(skipped_); NextBlock() == PartBlockKind::Skipped;) {
            const std::string text = blocks_.Text();
            for (PartDecoder decoder(text); !decoder.IsAtEnd();) {
                skipped.push_back(TakeSkipped(decoder));
            }
        }
    });
    blocks_.GoTo(entries_);
    return skipped;
}

PartResult PartReader::Next() {
    PartResult read;
    NamingPart([&] {
        do {
            if (rest_.IsAtEnd()) {
                ReadEntries();
            }
        } while (!TakeEntry(rest_, read));
    });
    return read;
}

void PartReader::ReadEntries() {
    if (!isBegun_) {
        blocks_.GoTo(entries_);
        isBegun_ = true;
    }
    blocks_.Next();
    blocks_.Release();
    if (blocks_.Kind() != PartBlockKind::Entries) {
        throw DamagedPart();
    }
    block_ = blocks_.Text();
    rest_ = PartDecoder(block_);
}

bool PartReader::TakeEntry(PartDecoder& decoder, PartResult& read) {
    switch (static_cast<PartEntry>(decoder.NumberUpTo(static_cast<std::uint64_t>(PartEntry::Outcome)))) {
    case PartEntry::Finding:
        read.result.ownFindings.push_back(TakeMessage(decoder));
        return false;
    case PartEntry::HiddenFinding:
        read.hiddenFindings.push_back(decoder.Mark());
        return false;
    case PartEntry::Outcome: {
        std::vector<OrvlogConverter::ReportMessage> findings = std::move(read.result.ownFindings);
        read.result = TakeOutcome(decoder);
        read.result.ownFindings = std::move(findings);
        return true;
    }
    }
    throw DamagedPart();
}

} // namespace Orvanta
