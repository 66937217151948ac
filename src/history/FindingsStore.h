#pragma once

#include "history/HistoryFile.h"
#include "platform/Files.h"

#include <cstdint>
#include <fstream>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Orvanta {

/// The findings of many units, in one file that only grows: what a kept range tells of is never written over. Any
/// thread may call any function of it.
///
/// They stand apart from the binary file because that one is written as a whole: with them in it, each save would copy
/// all findings of the project. A file for each unit would be a hundred thousand of them. What is replaced stays behind
/// as waste until it is the larger part; then what counts is moved into a file with a new number, and the old one goes
/// once the binary file tells of the new one. So a kill at any moment leaves a pair that fits.
class FindingsStore {
public:
    /// A file of its own in `folder`, under a new number, made when there is something to write.
    explicit FindingsStore(std::string folder);

    /// Goes on with the file `number`, of which `end` bytes count. Returns how many of them are there.
    [[nodiscard]] std::uint64_t Continue(std::uint64_t number, std::uint64_t end);

    /// Writes the text behind all others and returns where it stands. An empty one takes no room, and makes no file.
    /// \throws FileException
    [[nodiscard]] FindingsRange Append(std::string_view text);

    /// \throws FileException when the text can't be read or is not what was appended
    [[nodiscard]] std::string Read(const FindingsRange& range) const;

    /// Whether the text can be read and is what was appended.
    [[nodiscard]] bool IsIntact(const FindingsRange& range) const;

    /// Where the findings stand.
    [[nodiscard]] std::string Path() const;

    /// 0: there is no file.
    [[nodiscard]] std::uint64_t Number() const;

    /// How many bytes of the file count.
    [[nodiscard]] std::uint64_t End() const;

    /// Removes the files of all other stores from the folder, as far as that is possible now.
    void RemoveOthers() const noexcept;

private:
    using Lock = std::lock_guard<std::mutex>;

    /// The path of the file with this number.
    [[nodiscard]] std::string FileName(std::uint64_t number) const;
    /// The text, out of the window, which it moves if need be; absent when it can't be read or is another one. Lasts
    /// until the next call.
    [[nodiscard]] std::optional<std::string_view> View(const FindingsRange& range, const Lock& lock) const;

    std::string folder_;
    mutable std::mutex mutex_;
    std::uint64_t number_ = 0;         // guarded by mutex_, as all that follows
    std::uint64_t end_ = 0;            //
    std::uint64_t greatestUsed_ = 0;   // of the numbers that are taken
    std::optional<OutputFile> output_; // once something is written
    mutable std::ifstream input_;      // once something is read
    mutable std::string window_;       // what was read last, ahead of what was asked for: units are asked for in order
    mutable std::uint64_t windowBegin_ = 0;
};

/// Moves the findings of `units` into a new store when most of what is in this one belongs to no unit any more; null
/// otherwise. What can't be read is not moved, and the unit has no result then.
/// \throws FileException when the new file can't be written; the units are as before then
[[nodiscard]] std::unique_ptr<FindingsStore> CompactFindings(const FindingsStore& store, const std::string& folder,
                                                             std::span<KnownUnit> units);

} // namespace Orvanta
