#include "history/FindingsStore.h"

#include "platform/Exceptions.h"
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

std::optional<std::string> TryRead(const FindingsStore& store, const FindingsRange& range) {
    try {
        return store.Read(range);
    } catch (const ZelmException&) {
        return std::nullopt;
    }
}

} // namespace

FindingsStore::FindingsStore(std::string folder) : folder_(std::move(folder)) {}

bool FindingsStore::Continue(std::uint64_t number, std::uint64_t end) {
    const std::lock_guard lock(mutex_);
    if (number == 0) {
        return true;
    }
    const std::optional<std::uint64_t> size = FileSize(FileName(number));
    if (!size || *size < end) {
        greatestUsed_ = number;
        return false;
    }
    number_ = number;
    end_ = end;
    return true;
}

FindingsRange FindingsStore::Append(std::string_view text) {
    const Fingerprint fingerprint = FingerprintOf(text);
    const std::lock_guard lock(mutex_); // the order of the texts is that of the calls
    if (text.empty()) {
        return {0, 0, fingerprint};
    }
    if (number_ == 0) {
        MakeFolders(folder_);
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

std::string FindingsStore::Read(const FindingsRange& range) const {
    std::string text;
    if (range.size == 0) {
        return text;
    }
    const std::lock_guard lock(mutex_); // there is one place in the file for all who read
    const std::string path = FileName(number_);
    if (!input_.is_open()) {
        input_.open(NativePath(path), std::ios::binary);
    }
    text.resize(range.size);
    input_.clear();
    input_.seekg(static_cast<std::streamoff>(range.begin));
    input_.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!input_ || FingerprintOf(text) != range.text) {
        throw ZelmException(path + ": the findings kept here are damaged; remove this file to have them found anew");
    }
    return text;
}

std::uint64_t FindingsStore::Number() const {
    const std::lock_guard lock(mutex_);
    return number_;
}

std::uint64_t FindingsStore::End() const {
    const std::lock_guard lock(mutex_);
    return end_;
}

void FindingsStore::RemoveOthers() const noexcept {
    const std::lock_guard lock(mutex_);
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
    if (store.End() <= WorthIt || used >= store.End() / 2) {
        return nullptr;
    }
    auto compact = std::make_unique<FindingsStore>(folder);
    std::vector<std::optional<FindingsRange>> moved;
    moved.reserve(units.size());
    for (const KnownUnit& unit : units) {
        const std::optional<std::string> text = TryRead(store, unit.findings);
        moved.push_back(text ? std::optional(compact->Append(*text)) : std::nullopt);
    }
    for (std::size_t unit = 0; unit < units.size(); ++unit) {
        units[unit].findings = moved[unit].value_or(FindingsRange());
        units[unit].hasResult = moved[unit] ? units[unit].hasResult : 0;
    }
    return compact;
}

} // namespace Orvanta
