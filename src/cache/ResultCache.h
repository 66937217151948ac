#pragma once

#include "cache/CachedResult.h"
#include "cache/Digest.h"
#include "cache/ResultStore.h"
#include "cache/RootMark.h"
#include "platform/OnceMap.h"
#include "settings/SettingsMap.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace Orvanta {

/// All that the core's result of a unit depends on, beside what is the same for the whole run.
struct ResultInputs {
    std::string_view text; ///< preprocessed, with its line markers
    const std::string& sourcePath;
    const std::string& directory; ///< in which the core runs, and from which names in the markers are taken
    const SettingsMap& settings;  ///< that the core is told
    std::string_view ownFiles;    ///< what the paths of this run's own files begin with: settings that name one are
                                  ///< left out
};

/// The results of units by what they depend on: a text that was analyzed once, anywhere, is not analyzed again. Any
/// thread may call it.
///
/// A key holds the text itself, not what made it: a header that hides another one, a variable, `__has_include`, all
/// that changes the text gives another key. What a core may read beside the text, such as comments, is in the files
/// that the markers name: those that are no system headers count with their contents, each looked at once in a run.
class ResultCache {
public:
    enum class Access { ReadOnly, ReadAndWrite };

    struct Settings {
        Access access = Access::ReadAndWrite;
        std::uint64_t largestSize = 0; ///< bytes
    };

    /// `makers` is of what makes results: the core, what stands behind it, this program.
    ResultCache(std::unique_ptr<ResultStore> store, Settings settings, RootMark root, const Digest& makers);

    /// \throws ZelmException when the library of hashes can't be used
    [[nodiscard]] Digest KeyOf(const ResultInputs& inputs);

    /// What is known of a unit; absent when nothing is, or it is damaged.
    [[nodiscard]] std::optional<CachedResult> Find(const Digest& key);

    /// Keeps what was found where nothing is known; nothing where the cache may only be read. A result that can't be
    /// kept is no fault of its unit: the first reason is told by `Fault`.
    void Store(const Digest& key, const CachedResult& result) noexcept;

    /// The same in place of what is known.
    void Replace(const Digest& key, const CachedResult& result) noexcept;

    /// Counts a unit as a hit or a miss: it may be looked up several times.
    void Count(bool isKnown) noexcept { ++(isKnown ? hits_ : misses_); }

    /// How many units were known, and how many were not.
    [[nodiscard]] std::size_t Hits() const noexcept { return hits_; }

    [[nodiscard]] std::size_t Misses() const noexcept { return misses_; }

    /// Why a result could not be kept, or the place is asked no more; empty when all went well. Only when no thread is
    /// in Store.
    [[nodiscard]] std::string Fault() const { return fault_.empty() ? store_->Fault() : fault_; }

private:
    void Put(const Digest& key, const CachedResult& result, ResultStore::Existing existing) noexcept;
    // Adds the contents of the files that the markers of the text name.
    void AddFiles(DigestBuilder& builder, const ResultInputs& inputs);
    // Makes room beside an entry that was stored, as long as this has taken a hundredth of the run at most.
    void MakeRoom(const Digest& key);

    const std::unique_ptr<ResultStore> store_;
    const Settings settings_;
    const RootMark root_;
    const Digest makers_;
    OnceMap<std::string> fileDigests_; // by path; what stands for one that can't be read is no digest
    std::atomic<std::size_t> hits_ = 0;
    std::atomic<std::size_t> misses_ = 0;

    std::mutex mutex_;
    std::string fault_; // guarded by mutex_
    const std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::chrono::steady_clock::duration trimming_ = {}; // guarded by mutex_

    std::mutex unusableMutex_;       // of its own: mutex_ is held while room is made
    std::set<std::string> unusable_; // guarded by unusableMutex_; keys of damaged entries, until they are replaced
};

} // namespace Orvanta
