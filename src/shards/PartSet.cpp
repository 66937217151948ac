#include "shards/PartSet.h"

#include "platform/Exceptions.h"
#include "report/SourceRootTransformer.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <utility>

namespace Orvanta {

namespace {

/// A maker of results in which parts may differ.
struct MakerRow {
    Fingerprint PartMakers::*mark;
    const char* what;
};

// The first in which they differ is told: what stands further up may be why what stands below differs.
constexpr MakerRow MakerRows[] = {
    {&PartMakers::build, "the build description"},
    {&PartMakers::compilers, "the compilers"},
    {&PartMakers::core, "the core"},
    {&PartMakers::settings, "the settings"},
    {&PartMakers::base, "the suppress file"},
};

// With what they are, where that is known of both and tells them apart.
std::string Differing(const std::string& what, const std::string& one, const std::string& other) {
    return one == other || one.empty() || other.empty() ? what : what + " (" + other + " and " + one + ")";
}

// "5, 9, 12".
std::string ListOf(const std::vector<std::uint32_t>& numbers) {
    std::string text;
    for (const std::uint32_t number : numbers) {
        text += (text.empty() ? "" : ", ") + std::to_string(number);
    }
    return text;
}

// Units of the input that are in no part, counted from 1 for people.
std::string GapLine(std::size_t first, std::size_t behind) {
    return first + 1 == behind ? "  in no part: number " + std::to_string(behind) + " of the input\n"
                               : "  in no part: numbers " + std::to_string(first + 1) + " to " +
                                     std::to_string(behind) + " of the input\n";
}

} // namespace

std::optional<std::string> DifferenceOf(const PartMakers& one, const PartMakers& other) {
    if (one.ownVersion != other.ownVersion || one.resultVersion != other.resultVersion) {
        return Differing("the version of this program", one.ownVersion, other.ownVersion);
    }
    for (const MakerRow& row : MakerRows) {
        if (one.*row.mark != other.*row.mark) {
            return row.mark == &PartMakers::core ? Differing(row.what, one.coreVersion, other.coreVersion) : row.what;
        }
    }
    return std::nullopt;
}

PartSet::PartSet(std::span<const std::string> paths) {
    for (const std::string& path : paths) {
        parts_.push_back(std::make_unique<PartReader>(path));
    }
    if (parts_.empty()) {
        throw ZelmException("There are no parts to merge");
    }
    RequireOneRun();
    std::stable_sort(parts_.begin(), parts_.end(), [](const auto& left, const auto& right) {
        return left->Head().shard.number < right->Head().shard.number;
    });
    RequireEachShardOnce();
    sourceRoot_ = SourceRootOf(Head());
    for (std::uint32_t part = 0; part < parts_.size(); ++part) {
        const std::vector<PartUnit>& units = parts_[part]->Units();
        for (std::uint32_t unit = 0; unit < units.size(); ++unit) {
            order_.push_back({units[unit].number, part, unit});
        }
    }
    std::stable_sort(order_.begin(), order_.end(),
                     [](const Place& left, const Place& right) { return left.number < right.number; });
    RequireOnePartition();
    skipped_ = parts_.front()->ReadSkipped();
}

void PartSet::RequireOneRun() const {
    const PartReader& first = *parts_.front();
    for (const std::unique_ptr<PartReader>& part : parts_) {
        std::optional<std::string> difference = DifferenceOf(part->Head().makers, first.Head().makers);
        if (!difference && part->Head().shard.count != first.Head().shard.count) {
            difference = Differing("the shards", ShardText(part->Head().shard), ShardText(first.Head().shard));
        }
        if (difference) {
            throw ZelmException("These are not parts of one run: " + first.Path() + " and " + part->Path() +
                                " differ in " + *difference);
        }
    }
}

void PartSet::RequireEachShardOnce() const {
    for (std::size_t part = 1; part < parts_.size(); ++part) {
        if (const Shard& shard = parts_[part]->Head().shard; shard == parts_[part - 1]->Head().shard) {
            throw ZelmException("Shard " + ShardText(shard) + " is there twice: " + parts_[part - 1]->Path() + " and " +
                                parts_[part]->Path());
        }
    }
}

void PartSet::RequireOnePartition() const {
    const bool isOne = std::all_of(parts_.begin(), parts_.end(), [this](const auto& part) {
        return part->Head().makers.partition == Head().makers.partition;
    });
    const bool isShared = std::adjacent_find(order_.begin(), order_.end(), [](const Place& one, const Place& next) {
                              return one.number == next.number;
                          }) != order_.end();
    if (!isOne || isShared) {
        throw ZelmException("The parts were not cut alike: have all shards been given the same file of --costs?",
                            DescribeOverlaps());
    }
}

std::string PartSet::DescribeOverlaps() const {
    std::string text;
    std::size_t next = 0; // the number that is due
    for (auto place = order_.begin(); place != order_.end();) {
        if (place->number > next) {
            text += GapLine(next, place->number);
        }
        const auto behind =
            std::find_if(place, order_.end(), [place](const Place& other) { return other.number != place->number; });
        if (behind - place > 1) {
            text += "  in";
            for (auto owner = place; owner != behind; ++owner) {
                text += (owner == place ? " " : " and ") + parts_[owner->part]->Path();
            }
            text += ": " + parts_[place->part]->Units()[place->unit].source + "\n";
        }
        next = place->number + 1;
        place = behind;
    }
    if (next < Head().allUnits) {
        text += GapLine(next, Head().allUnits);
    }
    if (text.ends_with('\n')) {
        text.pop_back(); // who prints it ends the line
    }
    return text;
}

std::string PartSet::Gaps() const {
    std::vector<std::uint32_t> missing;
    std::string stopped;
    std::uint32_t due = 1;
    for (const std::unique_ptr<PartReader>& part : parts_) {
        for (; due < part->Head().shard.number; ++due) {
            missing.push_back(due);
        }
        ++due;
        if (part->StoppedUnits() > 0) {
            stopped += "Shard " + std::to_string(part->Head().shard.number) +
                       " was stopped: " + std::to_string(part->StoppedUnits()) + " of its " +
                       std::to_string(part->Units().size()) + " source files were not analyzed\n";
        }
    }
    const std::uint32_t count = Head().shard.count;
    for (; due <= count; ++due) {
        missing.push_back(due);
    }
    const std::string head = missing.empty()
                                 ? ""
                                 : std::to_string(missing.size()) + " of " + std::to_string(count) +
                                       (missing.size() == 1 ? " shards is missing: " : " shards are missing: ") +
                                       ListOf(missing) + "\n";
    return head + stopped;
}

PartResult PartSet::Next() {
    PartResult read = parts_[order_[next_++].part]->Next();
    if (!sourceRoot_.empty()) {
        OrvlogConverter::SourceRootTransformer placer(nullptr, sourceRoot_);
        for (OrvlogConverter::ReportMessage& message : read.result.ownFindings) {
            message = placer.Transform(std::move(message));
        }
    }
    return read;
}

} // namespace Orvanta
