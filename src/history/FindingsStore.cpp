#include "history/FindingsStore.h"

#include "platform/Exceptions.h"
#include "platform/FileStamp.h"
#include "platform/NativePath.h"
#include "platform/Paths.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

constexpr std::string_view NameStart = "findings-";

/// The number in the name of such a file.
std::optional<std::uint64_t> NumberOf(std::string_view name) {
    if (!name.starts_with(NameStart)) {
        return std::nullopt;
    }
    name.remove_prefix(NameStart.size());
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    return error == std::errc() && end == name.data() + name.size() ? std::optional(number) : std::nullopt;
}

// A folder that can't be read has none, as far as we know.
template <typename Visit>
void VisitFindingsFiles(const std::string& folder, const Visit& visit) {
    std::error_code error;
    std::filesystem::directory_iterator file(NativePath(folder), error);
    for (const std::filesystem::directory_iterator end; !error && file != end; file.increment(error)) {
        const std::string path = PathText(file->path());
        if (const std::optional<std::uint64_t> number = NumberOf(FileNameOf(path))) {
            visit(path, *number);
        }
    }
}

} // namespace

FindingsStore::FindingsStore(std::string folder) : folder_(std::move(folder)) {}

std::uint64_t FindingsStore::Continue(std::uint64_t number, std::uint64_t end) {
    const Lock lock(mutex_);
    greatestUsed_ = number;
    const std::optional<FileStamp> stamp = number == 0 ? std::nullopt : StampOf(FileName(number));
    // The number stays known as taken, so that a new file does not get it.
    if (!stamp) {
        return 0;
    }
    number_ = number;
    end_ = std::min(end, stamp->size); // what is cut off is lost in any case: it may be written over
    return end_;
}

FindingsRange FindingsStore::Append(std::string_view text) {
    // Before the lock is taken: it needs nothing of the store.
    const Fingerprint fingerprint = FingerprintOf(text);
    const Lock lock(mutex_); // the order of the texts is that of the calls
    if (text.empty()) {
        return {0, 0, fingerprint};
    }
    if (number_ == 0) {
        MakeFolders(folder_);
        // Files of runs that were killed count too: a number is never used twice, so no old range fits a new file.
        VisitFindingsFiles(folder_, [this](const std::string&, std::uint64_t number) {
            greatestUsed_ = std::max(greatestUsed_, number);
        });
        number_ = greatestUsed_ + 1;
    }
    if (!output_) {
        output_.emplace(FileName(number_), OutputFile::Mode::Keep);
    }
    const std::uint64_t begin = end_;
    output_->WriteAt(text, begin);
    end_ += text.size();
    return {begin, text.size(), fingerprint};
}

std::optional<std::string_view> FindingsStore::View(const FindingsRange& range, const Lock&) const {
    constexpr std::uint64_t SmallestWindow = std::uint64_t{256} << 10U;
    if (range.size == 0) {
        return std::string_view();
    }
    // From the range on and a good deal further: units are mostly asked for in the order in which they were written.
    if (range.begin < windowBegin_ || range.begin + range.size > windowBegin_ + window_.size()) {
        if (!input_.is_open()) {
            input_.open(NativePath(FileName(number_)), std::ios::binary);
        }
        windowBegin_ = range.begin;
        window_.resize(std::max(range.size, SmallestWindow));
        // An earlier read up to the end has left the stream at its end.
        input_.clear();
        input_.seekg(static_cast<std::streamoff>(range.begin));
        input_.read(window_.data(), static_cast<std::streamsize>(window_.size()));
        window_.resize(input_.bad() ? 0 : static_cast<std::size_t>(std::max<std::streamsize>(input_.gcount(), 0)));
    }
    if (range.begin + range.size > windowBegin_ + window_.size()) {
        return std::nullopt;
    }
    const std::string_view text = std::string_view(window_).substr(range.begin - windowBegin_, range.size);
    return FingerprintOf(text) == range.text ? std::optional(text) : std::nullopt;
}

std::string FindingsStore::Read(const FindingsRange& range) const {
    const Lock lock(mutex_); // there is one window for all who read
    const std::optional<std::string_view> text = View(range, lock);
    if (!text) {
        throw FileException(FileName(number_), "the findings kept here are damaged");
    }
    return std::string(*text);
}

bool FindingsStore::IsIntact(const FindingsRange& range) const {
    const Lock lock(mutex_);
    return View(range, lock).has_value();
}

std::string FindingsStore::Path() const {
    const Lock lock(mutex_);
    return FileName(std::max(number_, greatestUsed_));
}

std::uint64_t FindingsStore::Number() const {
    const Lock lock(mutex_);
    return number_;
}

std::uint64_t FindingsStore::End() const {
    const Lock lock(mutex_);
    return end_;
}

void FindingsStore::RemoveOthers() const noexcept {
    const Lock lock(mutex_);
    VisitFindingsFiles(folder_, [this](const std::string& path, std::uint64_t number) {
        if (number != number_) {
            RemoveFile(path);
        }
    });
}

std::string FindingsStore::FileName(std::uint64_t number) const {
    return JoinPath(folder_, std::string(NameStart) + std::to_string(number));
}

std::unique_ptr<FindingsStore> CompactFindings(const FindingsStore& store, const std::string& folder,
                                               std::span<KnownUnit> units) {
    constexpr std::uint64_t WorthIt = std::uint64_t{1} << 20U;
    std::uint64_t used = 0;
    for (const KnownUnit& unit : units) {
        used += unit.findings.size;
    }
    // Little waste is not worth a copy, however large its share.
    if (store.End() <= WorthIt || used >= store.End() / 2) {
        return nullptr;
    }
    auto compact = std::make_unique<FindingsStore>(folder);
    std::vector<std::optional<FindingsRange>> moved;
    moved.reserve(units.size());
    for (const KnownUnit& unit : units) {
        // Into a list first: a fault in the middle must leave the units as they were.
        const bool isIntact = store.IsIntact(unit.findings);
        moved.push_back(isIntact ? std::optional(compact->Append(store.Read(unit.findings))) : std::nullopt);
    }
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        units[unit].findings = moved[unit].value_or(FindingsRange());
        units[unit].hasResult = moved[unit] ? units[unit].hasResult : 0;
    }
    return compact;
}

} // namespace Orvanta
