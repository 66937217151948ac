#pragma once

#include "platform/Files.h"

#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

namespace Orvanta {

/// What a block of a part holds.
enum class PartBlockKind : std::uint32_t {
    Head = 1,
    Units = 2,
    Skipped = 3,
    Entries = 4,
    End = 5, ///< how many units were stopped; none is missing in front of it
};

/// Bytes from which on a block is worth being written: none is much larger, unless a single value in it is.
inline constexpr std::size_t PartBlockSize = std::size_t{64} << 10U;

/// Writes the blocks of a part, which takes its place when it is whole. All functions throw FileException.
class PartBlockWriter {
public:
    PartBlockWriter(const std::string& path, AtomicFile::Durability durability);

    /// Compresses the text into a block of its own.
    void Append(PartBlockKind kind, std::string_view text);

    /// The last call, behind the end: the part is there.
    void Commit() { file_.Commit(); }

    /// Whether it is written where an earlier one stands.
    [[nodiscard]] bool IsInPlace() const noexcept { return file_.IsInPlace(); }

private:
    AtomicFile file_;
    std::uint64_t blocks_ = 0;
};

/// Reads the blocks of a part, one after the other. Throws ZelmException with the path and what is wrong.
class PartBlockReader {
public:
    /// Sees that the file is one.
    explicit PartBlockReader(std::string path);

    /// Takes the next block in, whole and as it was written. Behind the end nothing stands, and no block is to be asked
    /// for.
    void Next();

    /// Of the block that was taken in last.
    [[nodiscard]] PartBlockKind Kind() const noexcept { return kind_; }

    /// Its text.
    [[nodiscard]] std::string Text() const;

    /// A place between two blocks.
    struct Place {
        std::uint64_t offset = 0;
        std::uint64_t block = 0;
    };

    /// In front of the next block.
    [[nodiscard]] Place Here() const noexcept { return place_; }

    /// The next block is the one at this place.
    void GoTo(const Place& place);

    /// Gives the open file back to the system until the next block is wanted: there may be a thousand parts.
    void Release() { input_.close(); }

    [[nodiscard]] const std::string& Path() const noexcept { return path_; }

private:
    // The next bytes, as many as `bytes` has room for.
    void Take(std::string& bytes);
    void Open();

    std::string path_;
    std::ifstream input_;
    Place place_;
    PartBlockKind kind_ = PartBlockKind::Head;
    std::uint64_t textSize_ = 0;
    std::string packed_;
};

} // namespace Orvanta
