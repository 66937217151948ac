#pragma once

#include "shards/Part.h"
#include "shards/PartBlocks.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Orvanta {

/// What is read of a unit at once.
struct PartResult {
    UnitResult result; ///< its findings are `ownFindings`
    std::vector<Fingerprint> hiddenFindings;
};

/// Reads a part from front to end. Holds one block and one unit in memory, and the file open only while it takes a
/// block in. All functions throw ZelmException with the path for what can't be read, is damaged, or was never a part.
class PartReader {
public:
    /// Reads the head and the units, and sees that all that follows is whole.
    explicit PartReader(std::string path);
    PartReader(const PartReader&) = delete;
    PartReader& operator=(const PartReader&) = delete;

    [[nodiscard]] const std::string& Path() const noexcept { return blocks_.Path(); }

    [[nodiscard]] const PartHead& Head() const noexcept { return head_; }

    /// In input order.
    [[nodiscard]] const std::vector<PartUnit>& Units() const noexcept { return units_; }

    /// How many units have not come to their end.
    [[nodiscard]] std::size_t StoppedUnits() const noexcept { return stopped_; }

    /// The invocations of the whole input that gave no unit. Before the first `Next`.
    [[nodiscard]] std::vector<SkippedInvocation> ReadSkipped();

    /// The result of the next unit, in input order: as often as there are units.
    [[nodiscard]] PartResult Next();

private:
    // Does work that finds out what is damaged, and says which part it is.
    template <typename Work>
    void NamingPart(const Work& work);
    // Takes the next block in, whose kind must not come before that of the last one.
    PartBlockKind NextBlock();
    // Reads the blocks one after the other, to the end.
    void ReadFront();
    // The units of one block.
    void ReadUnits();
    // The next block of entries.
    void ReadEntries();
    // Reads the next entry into `read`; true when it was the last one of its unit.
    [[nodiscard]] static bool TakeEntry(PartDecoder& decoder, PartResult& read);

    PartBlockReader blocks_;
    PartHead head_;
    std::vector<PartUnit> units_;
    std::size_t stopped_ = 0;
    PartBlockReader::Place skipped_;       // where these blocks begin
    PartBlockReader::Place entries_;       // likewise
    bool isBegun_ = false;                 // the reading of entries
    std::string block_;                    // of entries
    PartDecoder rest_{std::string_view()}; // of the block
};

} // namespace Orvanta
