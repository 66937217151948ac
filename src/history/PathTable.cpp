#include "history/PathTable.h"

#include "platform/Fingerprint.h"

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
    return begin == text.size();
}

std::uint32_t PathTable::Add(std::string_view path, std::uint64_t directorySize) {
    for (; indexed_ < Size(); ++indexed_) {
        numbers_.emplace(FingerprintOf(Path(indexed_)).low, indexed_);
    }
    const auto [first, last] = numbers_.equal_range(FingerprintOf(path).low);
    for (auto entry = first; entry != last; ++entry) {
        if (Path(entry->second) == path && DirectorySize(entry->second) == directorySize) {
            return entry->second;
        }
    }
    return AddNew(path, directorySize);
}

std::uint32_t PathTable::AddNew(std::string_view path, std::uint64_t directorySize) {
    text_ += path;
    entries_.push_back({text_.size(), directorySize});
    return Size() - 1;
}

std::string_view PathTable::Path(std::uint32_t number) const {
    const std::uint64_t begin = number == 0 ? 0 : entries_[number - 1].end;
    return std::string_view(text_).substr(begin, entries_[number].end - begin);
}

std::string_view PathTable::Reported(std::uint32_t number) const {
    return Path(number).substr(DirectorySize(number));
}

} // namespace Orvanta
