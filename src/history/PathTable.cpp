#include "history/PathTable.h"

#include "platform/Fingerprint.h"

#include <algorithm>
#include <utility>

namespace Orvanta {

PathTable::PathTable(std::string text, std::vector<Entry> entries)
    : text_(std::move(text)), entries_(std::move(entries)) {}

bool PathTable::AreSound(std::string_view text, const std::vector<Entry>& entries) {
    std::uint64_t begin = 0;
    for (const Entry& entry : entries) {
        if (entry.end < begin || entry.end > text.size() || entry.directorySize > entry.end - begin) {
            return false;
        }
        begin = entry.end;
    }
    // Every byte of the text belongs to some path.
    return begin == text.size();
}

FileNumber PathTable::Add(std::string_view path, std::uint64_t directorySize) {
    // A run in which nothing has changed asks for no number, and is spared the index.
    for (; indexed_ < Size(); ++indexed_) {
        const auto file = static_cast<FileNumber>(indexed_);
        // By hash, and not by views into the text, which moves when it grows.
        numbers_.emplace(FingerprintOf(Path(file)).low, file);
    }
    const auto [first, last] = numbers_.equal_range(FingerprintOf(path).low);
    for (auto entry = first; entry != last; ++entry) {
        if (Path(entry->second) == path && DirectorySize(entry->second) == directorySize) {
            return entry->second;
        }
    }
    // Room first: a path without its entry would become part of the next one.
    if (const std::size_t size = text_.size() + path.size(); size > text_.capacity()) {
        text_.reserve(std::max(size, 2 * text_.capacity()));
    }
    entries_.push_back({text_.size() + path.size(), directorySize});
    text_ += path;
    return static_cast<FileNumber>(Size() - 1);
}

std::string_view PathTable::Path(FileNumber file) const {
    const std::size_t place = PlaceOf(file);
    const std::uint64_t begin = place == 0 ? 0 : entries_[place - 1].end;
    return std::string_view(text_).substr(begin, entries_[place].end - begin);
}

std::string_view PathTable::Reported(FileNumber file) const {
    return Path(file).substr(DirectorySize(file));
}

} // namespace Orvanta
