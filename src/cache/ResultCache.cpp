#include "cache/ResultCache.h"

#include "platform/LineMarker.h"

#include <exception>
#include <utility>

namespace Orvanta {

namespace {

// To be raised when a key stands for something else than before.
constexpr std::uint64_t KeyVersion = 1;
constexpr int LargestTrimShare = 100; // one part in as many of the run's time

} // namespace

ResultCache::ResultCache(std::unique_ptr<ResultStore> store, Settings settings, RootMark root, const Digest& makers)
    : store_(std::move(store)), settings_(settings), root_(std::move(root)), makers_(makers) {}

Digest ResultCache::KeyOf(const ResultInputs& inputs) {
    DigestBuilder builder;
    builder.Add(KeyVersion).Add(makers_.Text());
    root_.AddValue(builder, inputs.directory);
    for (const auto& [key, value] : inputs.settings) {
        // The names of temporary files are others in each run.
        if (!value.starts_with(inputs.ownFiles)) {
            builder.Add(key);
            root_.AddValue(builder, value);
        }
    }
    root_.AddText(builder, inputs.text);
    AddFiles(builder, inputs);
    return builder.Value();
}

void ResultCache::AddFiles(DigestBuilder& builder, const ResultInputs& inputs) {
    for (const std::string& path :
         FilesNamedByMarkers(inputs.text, inputs.sourcePath, inputs.directory, SystemHeaders::LeftOut)) {
        // What is not there, such as the grammar that generated code names, counts as such.
        builder.Add(fileDigests_.Get(path, [&path] {
            const std::optional<Digest> digest = DigestOfFile(path);
            return digest ? digest->Text() : std::string();
        }));
    }
}

std::optional<CachedResult> ResultCache::Find(const Digest& key) {
    std::optional<CachedResult> result;
    if (const std::optional<std::string> bytes = store_->Find(key)) {
        result = UnpackResult(*bytes, root_);
        if (!result) {
            const std::lock_guard lock(unusableMutex_);
            unusable_.insert(key.Text());
        }
    }
    return result;
}

void ResultCache::Store(const Digest& key, const CachedResult& result) noexcept {
    bool isUnusable = false;
    {
        const std::lock_guard lock(unusableMutex_);
        isUnusable = unusable_.erase(key.Text()) > 0;
    }
    Put(key, result, isUnusable ? ResultStore::Existing::Replace : ResultStore::Existing::MayStay);
}

void ResultCache::Replace(const Digest& key, const CachedResult& result) noexcept {
    Put(key, result, ResultStore::Existing::Replace);
}

void ResultCache::Put(const Digest& key, const CachedResult& result, ResultStore::Existing existing) noexcept {
    if (settings_.access == Access::ReadOnly) {
        return;
    }
    try {
        if (const std::optional<std::string> bytes = PackResult(result, root_)) {
            store_->Store(key, *bytes, existing);
            MakeRoom(key);
        }
    } catch (const std::exception& error) {
        const std::lock_guard lock(mutex_);
        if (fault_.empty()) {
            fault_ = error.what();
        }
    }
}

void ResultCache::MakeRoom(const Digest& key) {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    const auto begin = std::chrono::steady_clock::now();
    // Nobody waits for it, and another run, or the next entry, will come by.
    if (!lock.owns_lock() || trimming_ * LargestTrimShare > begin - begin_) {
        return;
    }
    store_->MakeRoom(key, settings_.largestSize);
    trimming_ += std::chrono::steady_clock::now() - begin;
}

} // namespace Orvanta
