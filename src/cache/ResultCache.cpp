#include "cache/ResultCache.h"

#include "platform/LineMarker.h"
#include "platform/Paths.h"
#include "platform/Text.h"

#include <exception>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Orvanta {

namespace {

// To be raised when a key stands for something else than before.
constexpr std::uint64_t KeyVersion = 1;
constexpr int LargestTrimShare = 100; // one part in as many of the run's time

// The quoted names of files in the line markers of a text, but for those of system headers, in order of first
// appearance. Points into the text.
std::vector<std::string_view> NamesInMarkers(std::string_view text) {
    std::vector<std::string_view> names;
    std::unordered_set<std::string_view> seen;
    std::string_view last;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '#') {
            const std::optional<LineMarker> marker = ReadLineMarker(text.substr(at, text.find('\n', at) - at));
            const bool isNew = marker && !marker->quotedName.empty() && marker->quotedName != last;
            if (isNew && !marker->isSystemHeader && seen.insert(marker->quotedName).second) {
                names.push_back(marker->quotedName);
            }
            // Most markers name the file that the one before has named.
            last = isNew ? marker->quotedName : last;
        }
        const std::size_t next = text.find("\n#", at);
        at = next == std::string_view::npos ? text.size() : next + 1;
    }
    return names;
}

} // namespace

ResultCache::ResultCache(Settings settings, RootMark root, const Digest& makers)
    : settings_(std::move(settings)), folder_(settings_.folder), root_(std::move(root)), makers_(makers) {}

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
    for (const std::string_view name : NamesInMarkers(inputs.text)) {
        const std::string path = NormalizePath(JoinPath(inputs.directory, UnquotedName(name)));
        // What is not there, such as "<built-in>" or the grammar that generated code names, counts as such.
        builder.Add(fileDigests_.Get(path, [&path] {
            const std::optional<Digest> digest = DigestOfFile(path);
            return digest ? digest->Text() : std::string();
        }));
    }
}

std::optional<CachedResult> ResultCache::Find(const Digest& key) {
    std::optional<CachedResult> result;
    if (const std::optional<std::string> bytes = folder_.Find(key)) {
        result = UnpackResult(*bytes, root_);
    }
    ++(result ? hits_ : misses_);
    return result;
}

void ResultCache::Store(const Digest& key, const CachedResult& result) noexcept {
    if (settings_.access == Access::ReadOnly) {
        return;
    }
    try {
        if (const std::optional<std::string> bytes = PackResult(result, root_)) {
            folder_.Store(key, *bytes);
            TrimBeside(key);
        }
    } catch (const std::exception& error) {
        const std::lock_guard lock(mutex_);
        if (fault_.empty()) {
            fault_ = error.what();
        }
    }
}

void ResultCache::TrimBeside(const Digest& key) {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    const auto begin = std::chrono::steady_clock::now();
    // Nobody waits for it, and another run, or the next entry, will come by.
    if (!lock.owns_lock() || trimming_ * LargestTrimShare > begin - begin_) {
        return;
    }
    folder_.TrimBeside(key, settings_.largestSize);
    trimming_ += std::chrono::steady_clock::now() - begin;
}

} // namespace Orvanta
